#include "cli/LoginRun.h"

#include "cli/CliApplication.h"

void LoginRun::start()
{
    if (!application().prepareForService()) {
        application().end(ExitCode::Usage);
        return;
    }
    application().login([this](const QString& contactID) {
        application().reporter().result(contactID.trimmed(), {{QStringLiteral("event"), QStringLiteral("login")},
                                                              {QStringLiteral("contactID"), contactID.trimmed()}});
        application().end(ExitCode::Done);
    });
}
