// libtamerisk.so exports the nine C functions and the dialog class, nothing
// else: hosts cannot come to depend on the engine, nor clash with it.
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <gtest/gtest.h>

TEST(ExportedSymbols, OnlyTheHostInterface)
{
    if (QStandardPaths::findExecutable(QStringLiteral("nm")).isEmpty())
        GTEST_SKIP() << "nm is not installed";
    QProcess nm;
    nm.start(QStringLiteral("nm"), {"-D", "--defined-only", "-C", TAMERISK_LIBRARY_PATH});
    ASSERT_TRUE(nm.waitForFinished(30000) && nm.exitCode() == 0);
    QStringList names;
    static const QRegularExpression line(QStringLiteral("^[0-9a-f]+ \\S (.+)$"), QRegularExpression::MultilineOption);
    for (auto it = line.globalMatch(QString::fromUtf8(nm.readAllStandardOutput())); it.hasNext();)
        names << it.next().captured(1);
    const QStringList wanted = {"Tamerisk_Open", "Tamerisk_Close", "Tamerisk_SetAttribute", "Tamerisk_GetAttribute",
                                "Tamerisk_SetColorBind", "Tamerisk_GetColorBind", "Tamerisk_ShowWindow",
                                "Tamerisk_GetShow", "Tamerisk_SetTitle", "CDlgAttribute::Create()",
                                "CDlgAttribute::UpdatePanelView()", "CDlgAttribute::GetColorBind() const"};
    for (const QString& f : wanted)
        EXPECT_TRUE(names.contains(f)) << f.toStdString();
    const QStringList markers = {"__bss_start", "_edata", "_end", "_init", "_fini"};
    for (const QString& name : names)
        EXPECT_TRUE(wanted.contains(name) || name.contains("CDlgAttribute") || markers.contains(name)) << name.toStdString();
}
