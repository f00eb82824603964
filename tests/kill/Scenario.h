#pragma once

#include "Killer.h"
#include "Moment.h"
#include "e2e/ChildProgram.h"

#include "demo-service/Service.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

// What an undisturbed order leads to. Read by all scenarios at once.
struct Undisturbed
{
    Road road;
    std::map<std::string, int> requests; // by what is asked
};

// What all scenarios share: the recordings, and how an order goes when nobody disturbs it.
struct Common
{
    QString program = QStringLiteral(CLI_PROGRAM);
    QTemporaryDir folder;
    Undisturbed once;  // the service asks for nothing again
    Undisturbed again; // it does
    // Each upload that a recording can rightly lead to.
    std::map<std::string, std::set<std::string>> audio;
    std::map<QString, QByteArray> demoDiscFiles; // by the path in the job's folder
};

struct Outcome
{
    std::vector<std::string> failures;
    std::vector<std::string> kills; // what each was aimed at
    std::vector<std::string> steps; // how far the orders were, as saved, when each came
    int missed = 0;                 // runs that ended before their moment came
    int resumes = 0;                // runs that were killed while resuming
    int notTaken = 0;               // orders killed before anything was saved, and given again
    int cutFiles = 0;
    int twins = 0;                      // depositions beyond the first of an order
    int announced = 0;                  // of these, told of
    int announcedInVain = 0;            // told of, though the service had no second one
    int withoutFormat = 0;              // segments whose streams the service was not told of
    std::map<std::string, int> repeats; // requests beyond those of undisturbed orders, by what is asked
};

// One world with a service, a home and orders of its own, whose runs are killed and resumed. Used by one thread.
class Scenario
{
public:
    Scenario(const Plan& plan, const Common& common);
    Scenario(const Scenario&) = delete;
    Scenario& operator=(const Scenario&) = delete;

    [[nodiscard]] Outcome run();
    // Gives one order, leaves it alone, and tells how it went; nothing, with the words in `failure`, where it fails.
    [[nodiscard]] std::optional<Undisturbed> runUndisturbed(Common& common, std::string& failure);

private:
    struct Run
    {
        enum class End { Killed, Ended, Hung };
        End end = End::Hung;
        int exitCode = -1;
        QString output; // both
        Road road;
    };

    [[nodiscard]] QString path(const QString& relative) const { return m_folder.filePath(relative); }
    [[nodiscard]] QString transcript(int order) const;
    [[nodiscard]] QStringList submitArguments(int order) const;
    [[nodiscard]] Run runProgram(const QStringList& arguments, const std::optional<Moment>& moment);
    void submit(int order);
    [[nodiscard]] bool killSubmission(int order);
    void resume();
    void afterKill(const Moment& moment);
    void expectNoChildren();
    void cutSavedJobs(double share);
    [[nodiscard]] bool isTaken(int order) const;
    [[nodiscard]] std::vector<DemoService::Job> depositionsOf(int order) const;
    void checkEnd();
    void checkOrder(int order);
    void checkDeposition(int order, const DemoService::Job& job);
    void checkDeliveryFolder(const std::vector<DemoService::Job>& delivered);
    void countRepeats();
    [[nodiscard]] std::map<QString, QByteArray> expectedFiles(const DemoService::Job& job) const;
    [[nodiscard]] std::map<QString, QByteArray> filesBelow(const QString& folder) const;
    [[nodiscard]] std::map<std::string, int> requestsByKind() const;
    void fail(const std::string& words) { m_outcome.failures.push_back(words); }

    const Plan m_plan;
    const Common& m_common;
    const Road& m_road;
    QTemporaryDir m_folder;
    QMap<QString, QString> m_environment;
    QString m_allOutput;
    Outcome m_outcome;

    std::mutex m_mutex; // guards the member below
    Killer* m_killer = nullptr;
    DemoService::Service m_service; // last: its threads use the others
};
