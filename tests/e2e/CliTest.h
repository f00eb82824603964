#pragma once

#include "ChildProgram.h"

#include "demo-service/Service.h"
#include "support/TemporaryHome.h"

#include <QJsonObject>
#include <QMap>
#include <QString>
#include <QStringList>
#include <gmock/gmock.h>

#include <memory>
#include <vector>

// A fixture that runs the command line against a demo service of its own: in a home of its own, with nothing in the
// environment but what it needs, and with the polls quickened.
class CliTest : public TemporaryHome
{
protected:
    CliTest();

    // Starts a run with the options for the service in front; to be waited for by the test.
    ChildProgram& start(const QStringList& arguments, ChildProgram::Terminal terminal = ChildProgram::Terminal::None);
    // Starts a run and waits for its end.
    ChildProgram& run(const QStringList& arguments);
    // A run that is told nothing but `arguments` and the environment.
    ChildProgram& startBare(const QStringList& arguments,
                            ChildProgram::Terminal terminal = ChildProgram::Terminal::None);
    ChildProgram& runBare(const QStringList& arguments);
    void waitForEnd(ChildProgram& program);

    // A transcript with names and date on its cover, and a recording, in the home.
    [[nodiscard]] QString transcript() const;
    QString recording(const QString& name, double seconds = 1) const;
    // The arguments of an order of the sample transcript and these recordings.
    [[nodiscard]] QStringList order(const QStringList& media) const;

    // The delivered files, each relative to the delivery folder, sorted.
    [[nodiscard]] QStringList deliveredFiles() const;
    [[nodiscard]] QString deliveryFolder() const { return path(QStringLiteral("delivered")); }
    [[nodiscard]] QString stateFile() const { return path(QStringLiteral("temp/State_demo.archive")); }
    // The form body of the only request to `endpoint`.
    [[nodiscard]] QString onlyBody(const std::string& endpoint) const;

    // Every line of standard output as an object; a line that is none fails the test.
    [[nodiscard]] static std::vector<QJsonObject> objects(const ChildProgram& program);
    [[nodiscard]] static std::vector<QJsonObject> objects(const ChildProgram& program, const QString& event);

    [[nodiscard]] static std::string text(const QString& from) { return from.toStdString(); }

    DemoService::Service service;
    QMap<QString, QString> environment;

private:
    std::vector<std::unique_ptr<ChildProgram>> m_programs;
};
