#include "harness/ChildRun.h"
#include "rows/Rows.h"
#include "rows/VirtualScreen.h"

#include <QFile>
#include <QJsonObject>

namespace {

// A start is short, so that it takes more of them.
constexpr int startsOfARun = 3;

// A settings file that the program finds in its home, so that nothing stands before its main window and it asks no one.
struct Setting
{
    QString path;
    QByteArray text;
};

struct Program
{
    QString name;
    QString title; // the beginning of that of its window
    QStringList command;
    QList<Setting> settings;
};

QList<Program> others()
{
    return {{QStringLiteral("transmission-qt"),
             QStringLiteral("Transmission"),
             {QStringLiteral("transmission-qt")},
             {{QStringLiteral(".config/transmission/settings.json"),
               R"({"user-has-given-informed-consent": true, "rpc-enabled": false, "dht-enabled": false,
                   "lpd-enabled": false, "pex-enabled": false, "port-forwarding-enabled": false})"}}},
            {QStringLiteral("keepassxc"),
             QStringLiteral("KeePassXC"),
             {QStringLiteral("keepassxc")},
             {{QStringLiteral(".config/keepassxc/keepassxc.ini"),
               "[General]\nConfigVersion=2\nUpdateCheckMessageShown=true\n[GUI]\nCheckForUpdates=false\n"}}},
            {QStringLiteral("qbittorrent"),
             QStringLiteral("qBittorrent"),
             {QStringLiteral("qbittorrent")},
             {{QStringLiteral(".config/qBittorrent/qBittorrent.conf"),
               "[LegalNotice]\nAccepted=true\n[BitTorrent]\nSession\\DHTEnabled=false\nSession\\LSDEnabled=false\n"
               "Session\\PeXEnabled=false\n[Network]\nPortForwardingEnabled=false\n"}}}};
}

struct Figures
{
    std::vector<double> milliseconds;
    std::vector<double> resident;
    std::vector<double> proportional;
};

class Starts
{
public:
    explicit Starts(const Bench::Context& context)
        : m_work(context.program(QStringLiteral("quillpost-bench-start"))),
          m_home(context.folder.filePath(QStringLiteral("start-home")))
    {}

    // One start in a home that knows nothing but the settings.
    void measure(const Program& program, Figures& figures) const
    {
        makeHome(program);
        auto environment = m_screen.environment();
        environment.insert(QStringLiteral("HOME"), m_home);
        for (const char* const name :
             {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME", "XDG_RUNTIME_DIR"})
            environment.remove(QString::fromLatin1(name));
        const QJsonObject report =
            Bench::runChild(QStringList{m_work} + program.command, {.environment = environment}).report();
        if (const QString title = report.value(QStringLiteral("title")).toString(); !title.startsWith(program.title))
            Bench::fail(program.name + QStringLiteral(" first shows: ") + title);
        figures.milliseconds.push_back(report.value(QStringLiteral("seconds")).toDouble() * 1000);
        figures.resident.push_back(report.value(QStringLiteral("residentMegabytes")).toDouble());
        figures.proportional.push_back(report.value(QStringLiteral("proportionalMegabytes")).toDouble());
    }

private:
    void makeHome(const Program& program) const
    {
        QDir home(m_home);
        home.removeRecursively();
        for (const Setting& setting : program.settings) {
            const QString path = home.filePath(setting.path);
            QFile file(path);
            if (!home.mkpath(QFileInfo(path).path()) || !file.open(QIODevice::WriteOnly) ||
                file.write(setting.text) != setting.text.size())
                Bench::fail(path + QStringLiteral(" could not be written"));
        }
        if (!home.mkpath(m_home))
            Bench::fail(m_home + QStringLiteral(" could not be made"));
    }

    const Bench::VirtualScreen m_screen;
    const QString m_work;
    const QString m_home;
};

bool isKnown(const std::vector<double>& figures)
{
    return std::all_of(figures.begin(), figures.end(), [](double figure) { return figure > 0; });
}

} // namespace

std::vector<Bench::Row> Rows::start(const Bench::Context& context)
{
    const Starts starts(context);
    // Nothing is sent to the service before somebody logs in.
    const Program own{QStringLiteral("quillpost"),
                      QStringLiteral("Log In"),
                      {context.program(QStringLiteral("quillpost")), QStringLiteral("--secure-host"),
                       QStringLiteral("https://127.0.0.1:9"), QStringLiteral("--file-host"),
                       QStringLiteral("http://127.0.0.1:9")},
                      {}};
    std::vector<Bench::Row> rows;
    for (const Program& other : others()) {
        Figures ours;
        Figures theirs;
        Figures warmUp;
        starts.measure(own, warmUp);
        starts.measure(other, warmUp);
        Bench::inTurn(
            context.runs * startsOfARun, [&] { starts.measure(own, ours); }, [&] { starts.measure(other, theirs); });
        rows.push_back({.number = QStringLiteral("7"),
                        .work = QStringLiteral("start to first window"),
                        .beside = other.name,
                        .unit = QStringLiteral("ms"),
                        .goal = Bench::Goal::RatioAtMost,
                        .limit = 1,
                        .ours = ours.milliseconds,
                        .others = theirs.milliseconds});
        rows.push_back({.number = QStringLiteral("7 memory"),
                        .work = QStringLiteral("resident memory then"),
                        .beside = other.name,
                        .unit = QStringLiteral("MB"),
                        .goal = Bench::Goal::RatioAtMost,
                        .limit = 1,
                        .ours = ours.resident,
                        .others = theirs.resident});
        // What shared libraries take is divided among the programs that use them. Told to some users only.
        if (isKnown(ours.proportional) && isKnown(theirs.proportional))
            rows.push_back({.number = QStringLiteral("7 memory"),
                            .work = QStringLiteral("proportional memory then"),
                            .beside = other.name,
                            .unit = QStringLiteral("MB"),
                            .ours = ours.proportional,
                            .others = theirs.proportional});
    }
    return rows;
}
