#include "commands/GetInstructionsCommand.h"

#include "commands/UrlEncoding.h"
#include "foundation/Text.h"

#include <curl/curl.h>

GetInstructionsCommand::GetInstructionsCommand(const ServiceHosts& hosts, const QString& user, const QString& password)
    : CUrlCommand(hosts.secureUrl(QStringLiteral("/saltine/get_instructions.php")))
{
    setString(Text::format("user={}&pass={}&app=Quillpost", UrlEncoding::urlQueryString(user),
                           UrlEncoding::urlQueryString(password)),
              CURLOPT_POSTFIELDS);
}

std::shared_ptr<GetInstructionsCommand>
GetInstructionsCommand::getInstructionsCommandWithUser(const ServiceHosts& hosts, const QString& user,
                                                       const QString& password)
{
    return std::make_shared<GetInstructionsCommand>(hosts, user, password);
}
