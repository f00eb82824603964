#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QString>

#include <memory>
#include <optional>
#include <sys/types.h>

// The service of a soak in a process of its own, which ends with this object, or when this process ends. Not made with
// QProcess: thread sanitizers lose sight of a thread that starts one. Main thread.
class ServiceProcess : public QObject
{
    Q_OBJECT
public:
    ServiceProcess() = default;
    ~ServiceProcess() override;
    ServiceProcess(const ServiceProcess&) = delete;
    ServiceProcess& operator=(const ServiceProcess&) = delete;

    // False when it does not listen soon.
    [[nodiscard]] bool start();
    [[nodiscard]] QString secureHost() const { return m_secureHost; }
    [[nodiscard]] QString fileHost() const { return m_fileHost; }
    void order(const QString& line);

Q_SIGNALS:
    // The service no longer lists the job.
    void forgotten(int depoNum);
    void ended();

private:
    [[nodiscard]] bool startProgram();
    // False at the end of what the service says.
    [[nodiscard]] bool receive();
    [[nodiscard]] std::optional<QByteArray> takeLine();
    [[nodiscard]] std::optional<QString> waitForLine();
    void readLines();

    pid_t m_processId = -1;
    int m_socket = -1; // the service's standard input and output
    std::unique_ptr<QSocketNotifier> m_notifier;
    QByteArray m_received; // not yet taken as lines
    QString m_secureHost;
    QString m_fileHost;
};
