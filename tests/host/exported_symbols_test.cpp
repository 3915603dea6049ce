// libtamerisk.so exports the host interface and nothing else: the nine C
// functions and the dialog class. Everything of the engine, the preview and
// the dialogs' helpers stays hidden, so hosts cannot come to depend on it and
// it cannot clash with the host's own symbols.
#include <set>

#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QStringList>
#include <gtest/gtest.h>

namespace {

// The names of the library's defined dynamic symbols, demangled.
QStringList ExportedSymbols(bool* ok)
{
    QProcess nm;
    nm.start(QStringLiteral("nm"), {"-D", "--defined-only", "-C", TAMERISK_LIBRARY_PATH});
    *ok = nm.waitForFinished(30000) && nm.exitCode() == 0;
    QStringList names;
    const QStringList lines = QString::fromUtf8(nm.readAllStandardOutput()).split(u'\n');
    static const QRegularExpression line(QStringLiteral("^[0-9a-f]+ \\S (.+)$"));
    for (const QString& text : lines) {
        const QRegularExpressionMatch m = line.match(text);
        if (m.hasMatch())
            names << m.captured(1);
    }
    return names;
}

bool IsLinkerMarker(const QString& name)
{
    static const std::set<QString> markers = {"__bss_start", "_edata", "_end", "_init", "_fini"};
    return markers.count(name) != 0;
}

} // namespace

TEST(ExportedSymbols, OnlyTheHostInterface)
{
    if (QStandardPaths::findExecutable(QStringLiteral("nm")).isEmpty())
        GTEST_SKIP() << "nm is not installed";
    bool ok = false;
    const QStringList names = ExportedSymbols(&ok);
    ASSERT_TRUE(ok);

    const QStringList functions = {
        "Tamerisk_Open",         "Tamerisk_Close",         "Tamerisk_SetAttribute",
        "Tamerisk_GetAttribute", "Tamerisk_SetColorBind",  "Tamerisk_GetColorBind",
        "Tamerisk_ShowWindow",   "Tamerisk_GetShow",       "Tamerisk_SetTitle",
    };
    for (const QString& f : functions)
        EXPECT_TRUE(names.contains(f)) << f.toStdString();
    for (const char* member : {"CDlgAttribute::Create()", "CDlgAttribute::UpdatePanelView()",
                               "CDlgAttribute::GetColorBind() const"})
        EXPECT_TRUE(names.contains(QLatin1String(member))) << member;

    for (const QString& name : names) {
        const bool allowed = functions.contains(name) || name.contains("CDlgAttribute")
                             || IsLinkerMarker(name);
        EXPECT_TRUE(allowed) << "exported: " << name.toStdString();
    }
}
