#include "foundation/Secrets.h"

#include "foundation/Assertion.h"

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <vector>

namespace {

constexpr std::string_view mask = "***";
constexpr qsizetype longestPlainWord = 5;

// One way to write a secret down.
struct Form
{
    std::string bytes;
    bool inFieldsAlone = false; // masked only as the value of a form field
};

using Forms = std::vector<Form>;

struct Store
{
    std::mutex mutex;
    std::shared_ptr<const Forms> forms = std::make_shared<Forms>(); // guarded by mutex; longest first
};

Store& store()
{
    static Store* const theStore = new Store; // The log masks until its thread ends, whatever the order of the end.
    return *theStore;
}

std::shared_ptr<const Forms> currentForms()
{
    const std::scoped_lock lock(store().mutex);
    return store().forms;
}

bool isPlainWord(const QString& secret)
{
    return secret.size() <= longestPlainWord &&
           std::all_of(secret.begin(), secret.end(), [](QChar c) { return c.isLetterOrNumber() || c.isSpace(); });
}

void addPercentForms(const QByteArray& utf8, std::vector<QByteArray>& all)
{
    struct Encoder
    {
        const char* keeps; // beyond letters, digits and "-._~"
        const char* encodes;
    };
    // Of a query, of the unreserved characters alone, of forms in two dialects, and of scripts.
    constexpr std::array encoders{Encoder{"!$&'()*+,/:;=?@", ""}, Encoder{"", ""}, Encoder{"", "~"}, Encoder{"*", "~"},
                                  Encoder{"!'()*", ""}};
    for (const Encoder& encoder : encoders) {
        const QByteArray encoded = utf8.toPercentEncoding(encoder.keeps, encoder.encodes);
        all.push_back(encoded);
        all.push_back(QByteArray(encoded).replace("%20", "+"));
        // Hexadecimal digits in small letters; the letters outside the escapes stay.
        QByteArray small = encoded;
        for (qsizetype i = small.indexOf('%'); i >= 0; i = small.indexOf('%', i + 3))
            small.replace(i + 1, 2, small.mid(i + 1, 2).toLower());
        all.push_back(small);
        all.push_back(QByteArray(small).replace("%20", "+"));
    }
}

QByteArray jsonEscaped(const QString& secret)
{
    const QByteArray array = QJsonDocument(QJsonArray{secret}).toJson(QJsonDocument::Compact);
    return array.mid(2, array.size() - 4); // without ["…"]
}

// The escapes of services that write JSON in ASCII, slashes escaped.
QByteArray asciiJsonEscaped(const QString& secret)
{
    QByteArray escaped;
    for (const QChar c : secret) {
        if (c == u'"' || c == u'\\' || c == u'/')
            escaped.append('\\').append(c.toLatin1());
        else if (c.unicode() >= 0x20 && c.unicode() < 0x7f)
            escaped.append(c.toLatin1());
        else
            escaped.append("\\u").append(QByteArray::number(c.unicode(), 16).rightJustified(4, '0'));
    }
    return escaped;
}

void addHtmlForms(const QString& secret, std::vector<QByteArray>& all)
{
    const QByteArray html = secret.toHtmlEscaped().toUtf8();
    all.push_back(html);
    all.push_back(QByteArray(html).replace("'", "&#039;"));
    all.push_back(QByteArray(html).replace("'", "&#39;"));
}

std::vector<QByteArray> formsOf(const QString& secret)
{
    const QByteArray utf8 = secret.toUtf8();
    std::vector<QByteArray> all{utf8};
    addPercentForms(utf8, all);
    const QByteArray base64 = utf8.toBase64(QByteArray::Base64Encoding | QByteArray::OmitTrailingEquals);
    all.push_back(base64);
    all.push_back(utf8.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals));
    all.push_back(jsonEscaped(secret));
    all.push_back(asciiJsonEscaped(secret));
    addHtmlForms(secret, all);
    return all;
}

bool followsAFieldName(std::string_view text, std::size_t place)
{
    return text.substr(0, place).ends_with("pass=");
}

void maskForm(std::string& text, const Form& form)
{
    for (std::size_t at = text.find(form.bytes); at != std::string::npos; at = text.find(form.bytes, at)) {
        if (form.inFieldsAlone && !followsAFieldName(text, at)) {
            ++at;
            continue;
        }
        text.replace(at, form.bytes.size(), mask);
        at += mask.size();
    }
}

} // namespace

void Secrets::add(const QString& secret)
{
    if (secret.isEmpty())
        return;
    const bool inFieldsAlone = isPlainWord(secret);
    const std::scoped_lock lock(store().mutex);
    auto forms = std::make_shared<Forms>(*store().forms);
    for (const QByteArray& bytes : formsOf(secret)) {
        const bool isNew = std::none_of(forms->begin(), forms->end(),
                                        [&](const Form& form) { return form.bytes == bytes.toStdString(); });
        if (isNew)
            forms->push_back({bytes.toStdString(), inFieldsAlone});
    }
    // A secret that begins with another one is masked whole.
    std::stable_sort(forms->begin(), forms->end(),
                     [](const Form& a, const Form& b) { return a.bytes.size() > b.bytes.size(); });
    store().forms = std::move(forms);
}

std::string Secrets::masked(std::string_view text)
{
    std::string result(text);
    for (const Form& form : *currentForms())
        maskForm(result, form);
    return result;
}

QString Secrets::masked(const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    const std::string_view whole(utf8.constData(), static_cast<std::size_t>(utf8.size()));
    const std::string result = masked(whole);
    return result == whole ? text : QString::fromStdString(result);
}

std::optional<QString> Secrets::takeFromEnvironment(const char* variable)
{
    char* const value = std::getenv(variable);
    if (!value)
        return std::nullopt;
    const QString taken = QString::fromLocal8Bit(value);
    // The system shows the memory in which the environment came, also of variables that are taken out of it.
    ::explicit_bzero(value, std::strlen(value));
    ::unsetenv(variable);
    return taken.isEmpty() ? std::nullopt : std::optional(taken);
}

void Secrets::keepMemoryPrivate()
{
    if constexpr (!Assertion::stopsTheProgram) {
        // The limit alone would not keep a collector of crashes from taking the memory; the attribute does both.
        const rlimit none{0, 0};
        ::setrlimit(RLIMIT_CORE, &none);
        ::prctl(PR_SET_DUMPABLE, 0);
    }
}
