#include "demo-service/Endpoints.h"

#include "demo-service/FormBody.h"

#include <fmt/format.h>

#include <charconv>
#include <string_view>

namespace DemoService {
namespace {

const FieldRule userRule{"user", FieldKind::Raw};
const FieldRule passwordRule{"pass", FieldKind::Raw};

bool isForm(const Request& request)
{
    for (const auto& [name, value] : request.headers)
        if (name == "Content-Type")
            return value.starts_with("application/x-www-form-urlencoded");
    return false;
}

std::string rateEntry(std::string_view name, const Rate& rate)
{
    return fmt::format("\"{}\":{{\"Rate\":{:.2f},\"ProdCode\":{}}},", name, rate.rate, rate.productCode);
}

std::vector<std::pair<std::string_view, Rate>> products(const Rates& rates)
{
    return {{"Man24", rates.man24},
            {"Man48", rates.man48},
            {"Man72", rates.man72},
            {"Unattended", rates.unattended},
            {"AutoSync", rates.autoSync}};
}

} // namespace

Answer refusal(const std::string& fault)
{
    return {.status = 200, .text = "Bad request: " + fault, .refused = true};
}

int numberIn(const Fields& fields, const std::string& name)
{
    const std::string text = valueOf(fields, name);
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    // What does not fit names nothing that exists.
    return error == std::errc() ? value : -1;
}

Endpoints::Endpoints(Options& options)
    : m_options(options), m_book(options.firstOrderNumber, options.firstDepoNumber, options.turnaround)
{}

Answer Endpoints::answer(const Request& request, TimePoint now)
{
    if (request.onFileHost)
        return hostedFile(request);
    if (request.path == "/login" || request.path == "/saltine/setup_custom_options.php")
        return page(request);
    constexpr std::string_view prefix = "/saltine/";
    if (!request.path.starts_with(prefix) || request.path != std::string(prefix) + request.endpoint)
        return {.status = 404, .text = "Not found"};
    const std::string& name = request.endpoint;
    const bool isUpload = name == "test_custupload2.php" || name == "qpt_debug_upload.php";
    const bool isKnown = isUpload || name == "cauthorize2.php" || name == "CUpdate.php" || name == "jobdetails.php" ||
                         name == "add_segment.php" || name == "set_media_format.php" || name == "checkstatus.php" ||
                         name == "get_instructions.php" || name == "is_fti.php" || name == "get_rates2.php" ||
                         name == "get_rates.php" || name == "miscstuff.php" || name == "test_downloadjob2.php";
    if (!isKnown)
        return {.status = 404, .text = "Not found"};
    if (request.method != "POST")
        return refusal("this is asked with POST");
    if (isUpload)
        return name == "test_custupload2.php" ? upload(request, now) : uploadLog(request);
    if (!isForm(request))
        return refusal("the content type is not application/x-www-form-urlencoded");
    if (name == "cauthorize2.php")
        return login(request);
    if (name == "CUpdate.php")
        return changePassword(request);
    if (name == "jobdetails.php")
        return registerJob(request);
    if (name == "add_segment.php")
        return addSegment(request);
    if (name == "set_media_format.php")
        return setMediaFormat(request);
    if (name == "checkstatus.php")
        return checkStatus(request, now);
    if (name == "get_instructions.php")
        return instructions(request);
    if (name == "is_fti.php")
        return logAvailability(request);
    if (name == "get_rates2.php")
        return ratesTable(request);
    if (name == "get_rates.php")
        return rates(request);
    return name == "miscstuff.php" ? miscellaneous(request, now) : download(request, now);
}

std::optional<Answer> Endpoints::accountFault(const std::string& user, const std::string& password) const
{
    // A field that nobody asked for hides in the raw value before it.
    if (user.starts_with(m_options.user + "&"))
        return refusal("something unknown follows field user");
    if (password.starts_with(m_options.password + "&"))
        return refusal("something unknown follows field pass");
    if (user != m_options.user || password != m_options.password)
        return Answer{.text = "Invalid user name or password"};
    return std::nullopt;
}

Answer Endpoints::login(const Request& request)
{
    const FormReading form = readForm(request.body, {userRule, passwordRule});
    if (!form.fault.empty())
        return refusal(form.fault);
    if (const auto fault = accountFault(valueOf(form.fields, "user"), valueOf(form.fields, "pass")))
        return *fault;
    return {.text = m_options.demandPasswordChange ? "Change" : "OK: " + m_options.contactID};
}

Answer Endpoints::changePassword(const Request& request)
{
    const FormReading form = readForm(request.body, {userRule, passwordRule, {"npass", FieldKind::Raw}});
    if (!form.fault.empty())
        return refusal(form.fault);
    if (const auto fault = accountFault(valueOf(form.fields, "user"), valueOf(form.fields, "pass")))
        return *fault;
    const std::string newPassword = valueOf(form.fields, "npass");
    if (newPassword.empty() || newPassword == m_options.password)
        return {.text = "Invalid new password"};
    m_options.password = newPassword;
    m_options.demandPasswordChange = false;
    return {.text = "CP"};
}

Answer Endpoints::instructions(const Request& request)
{
    const FormReading form = readForm(
        request.body,
        {{"user", FieldKind::QueryEncoded}, {"pass", FieldKind::QueryEncoded}, {"app", FieldKind::Raw, "Quillpost"}});
    if (!form.fault.empty())
        return refusal(form.fault);
    if (const auto fault = accountFault(valueOf(form.fields, "user"), valueOf(form.fields, "pass")))
        return *fault;
    if (!m_options.sendLogs)
        return {.text = "OK"};
    m_options.sendLogs = false;
    return {.text = "OK SendLogs"};
}

Answer Endpoints::logAvailability(const Request& request)
{
    const FormReading form = readForm(request.body, {userRule, passwordRule, {"contactID", FieldKind::Word}});
    if (!form.fault.empty())
        return refusal(form.fault);
    if (const auto fault = accountFault(valueOf(form.fields, "user"), valueOf(form.fields, "pass")))
        return *fault;
    if (valueOf(form.fields, "contactID") != m_options.contactID)
        return {.text = "Unknown contact"};
    return {.text = m_options.logFormat ? "yes" : "no"};
}

Answer Endpoints::ratesTable(const Request& request)
{
    const FormReading form = readForm(request.body, {userRule, passwordRule});
    if (!form.fault.empty())
        return refusal(form.fault);
    if (const auto fault = accountFault(valueOf(form.fields, "user"), valueOf(form.fields, "pass")))
        return *fault;
    std::string table = "{";
    for (const auto& [name, rate] : products(m_options.rates))
        table += rateEntry(name, rate);
    return {.text = table + fmt::format("\"RUSH\":{{\"Multiplier\":{:.2f}}}}}", m_options.rates.rushMultiplier)};
}

Answer Endpoints::rates(const Request& request)
{
    const FormReading form = readForm(request.body, {userRule, passwordRule, {"prod", FieldKind::Integer, {}, true}});
    if (!form.fault.empty())
        return refusal(form.fault);
    if (const auto fault = accountFault(valueOf(form.fields, "user"), valueOf(form.fields, "pass")))
        return *fault;
    if (form.fields.size() == 3) {
        for (const auto& [name, rate] : products(m_options.rates))
            if (rate.productCode == numberIn(form.fields, "prod"))
                return {.text = fmt::format("{:.2f}", rate.rate)};
        return {.text = "Unknown product code"};
    }
    std::string list;
    for (const auto& [name, rate] : products(m_options.rates))
        list += fmt::format("{} {}\n", rate.productCode, name);
    return {.text = list};
}

Answer Endpoints::miscellaneous(const Request& request, TimePoint now)
{
    // The number is followed by "&" and whatever the client asks for, which may be nothing.
    const FormReading form = readForm(request.body, {userRule, passwordRule, {"depo", FieldKind::Raw}});
    if (!form.fault.empty())
        return refusal(form.fault);
    const std::string tail = valueOf(form.fields, "depo");
    const std::size_t end = tail.find('&');
    if (end == std::string::npos)
        return refusal("the body does not go on after field depo");
    const Fields number{{"depo", tail.substr(0, end)}};
    if (number.front().second.empty() || number.front().second.find_first_not_of("0123456789") != std::string::npos)
        return refusal("field depo is not a number");
    if (const auto fault = accountFault(valueOf(form.fields, "user"), valueOf(form.fields, "pass")))
        return *fault;
    const std::string extra = tail.substr(end + 1);
    const bool known =
        extra.empty() || extra == "field=delivery_option" || extra == "field=deponent2" || extra == "field=depo_date";
    if (!known)
        return refusal("nothing is known of the field asked for");
    const std::optional<Job> job = m_book.job(numberIn(number, "depo"), now, false);
    if (!job)
        return {.text = "Unknown deposition"};
    if (extra == "field=delivery_option")
        return {.text = m_options.deliveryOption};
    return {.text = valueOf(job->details, extra == "field=deponent2"   ? "deponentLast"
                                          : extra == "field=depo_date" ? "depoDate"
                                                                       : "shortCaption")};
}

Answer Endpoints::page(const Request& request) const
{
    if (request.method != "GET")
        return refusal("this is asked with GET");
    const char* title = request.path == "/login" ? "Your account" : "Custom delivery options";
    return {.text =
                fmt::format("<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\"><title>{0}</title></head>"
                            "<body><h1>{0}</h1><p>This page belongs to the demo service. There is nothing to set "
                            "here.</p></body></html>\n",
                            title)};
}

Answer Endpoints::hostedFile(const Request& request) const
{
    if (request.method != "GET")
        return refusal("files are asked for with GET");
    if (request.path == "/DemoDisc/OstrovizerDownloader.exe")
        return {.text = "This text stands in for the downloader program of the demo disc.\r\n"};
    if (request.path == "/DemoDisc/autorun.inf")
        return {.text = "; This text stands in for the demo disc's start instructions.\r\n[autorun]\r\n"
                        "open=OstrovizerDownloader.exe\r\n"};
    if (request.path == "/Korvane_ReadMe.txt")
        return {.text = "This text stands in for the viewer package's read-me file.\r\n"};
    return {.status = 404, .text = "Not found"};
}

} // namespace DemoService
