#pragma once

#include "ui-support/RecordingApplication.h"

#include "commands/GetRates2Command.h"
#include "commands/LogAvailabilityCommand.h"
#include "support/TemporaryHome.h"
#include "support/Waiting.h"
#include "ui/submit/SubmitJobWindowController.h"

#include <QStringList>

#include <memory>

// The submit window's logic over an application whose commands wait in their queue, unless a test starts them.
class SubmitTest : public TemporaryHome
{
protected:
    explicit SubmitTest(const ServiceHosts& hosts = RecordingApplication::unreachableHosts());

    // A transcript of Jane Q. Doe's deposition of 4 March 2026.
    QString transcript(const QString& name = QStringLiteral("Doe.txt"));
    // A file that is no recording, for tests that do not read it.
    QString recording(const QString& name);
    // The job's recordings, by name, in its order.
    [[nodiscard]] QStringList namesOfRecordings() const;
    // Takes what waits in the command queue; the names of the commands' pages.
    QStringList takeCommands();
    [[nodiscard]] QString levelValue(int tag) const;
    void waitUntilRead();

    [[nodiscard]] Job& job() { return *controller.job(); }
    [[nodiscard]] ScriptedDialogs& dialogs() { return application.scriptedDialogs; }

    RecordingApplication application;
    SubmitJobWindowController controller;
};

namespace SubmitTexts {

inline const QByteArray cover =
    "   1   Deposition of Jane Q. Doe\r\n   2\r\n   3   Wednesday, March 4, 2026\r\n   4   9:32 a.m.\r\n";
inline const QByteArray otherCover =
    "   1   Deposition of John Smith\r\n   2\r\n   3   Thursday, May 7, 2026\r\n   4   9:32 a.m.\r\n";
inline const QByteArray corporateCover = "  30(b)(6)\r\n  DEPOSITION OF JOHN SMITH\r\n  March 4, 2026\r\n";

inline const QString rates = QStringLiteral(
    R"({"Man24":{"Rate":95,"ProdCode":24},"Man48":{"Rate":75.5,"ProdCode":48},"Man72":{"Rate":"60.00","ProdCode":72},
        "Unattended":{"Rate":45,"ProdCode":10},"AutoSync":{"Rate":30,"ProdCode":11},"RUSH":{"Multiplier":1.5}})");
// The same without a price for Unattended.
inline const QString ratesWithoutUnattended =
    QString(rates).replace(QStringLiteral("\"Rate\":45"), QStringLiteral("\"Rate\":0"));

} // namespace SubmitTexts
