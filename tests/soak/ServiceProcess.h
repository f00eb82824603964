#pragma once

#include <QObject>
#include <QProcess>
#include <QString>

// The service of a soak in a process of its own. Main thread; ends with this object.
class ServiceProcess : public QObject
{
    Q_OBJECT
public:
    ServiceProcess();
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
    void readLines();

    QProcess m_process;
    QString m_secureHost;
    QString m_fileHost;
};
