#pragma once

#include <QString>
#include <QStringList>

#include <atomic>
#include <mutex>
#include <set>
#include <string>
#include <sys/types.h>
#include <thread>
#include <vector>

// Looks for passwords all the while that programs run, on a thread of its own: in every file below a folder, in the
// names of those files, and in what the system shows of every process (arguments and environment). A program that is
// followed may have them in its environment at its start, for as long as it takes to reach its main(). Safe to use from
// the thread that made it.
class SecretWatch
{
public:
    // Each password holds a run of ten letters and digits or more: it stays together however the rest is escaped.
    SecretWatch(const QString& folder, const QStringList& passwords);
    ~SecretWatch();
    SecretWatch(const SecretWatch&) = delete;
    SecretWatch& operator=(const SecretWatch&) = delete;

    void follow(pid_t program);
    // Looks once more and stops; the places where a password was.
    [[nodiscard]] std::vector<std::string> end();

    // The form in which a password is in the text; "" when there is none.
    [[nodiscard]] std::string found(const std::string& text) const;

private:
    void lookAround();
    void lookAtProcesses();
    void lookAtFiles();
    void note(const std::string& place);

    const QString m_folder;
    std::vector<std::string> m_forms;
    std::mutex m_mutex; // guards the three below
    std::set<pid_t> m_followed;
    std::set<std::string> m_places;
    std::set<pid_t> m_withoutInEnvironment; // followed ones that were seen without a password
    std::atomic<bool> m_isEnding{false};
    std::thread m_thread; // last
};
