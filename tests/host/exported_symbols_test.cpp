// libtamerisk.so exports the C functions of tamerisk.h, each under the
// symbol version of the release that added it, and nothing else: hosts cannot come to depend
// on the engine, the dialogs or any C++ member, nor clash with them.
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <gtest/gtest.h>

#include <tamerisk/version.h>

namespace {

QString OutputOf(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(30000) || process.exitCode() != 0)
        return QString();
    return QString::fromUtf8(process.readAllStandardOutput());
}

bool HaveBinutils()
{
    return !QStandardPaths::findExecutable(QStringLiteral("nm")).isEmpty()
           && !QStandardPaths::findExecutable(QStringLiteral("objdump")).isEmpty();
}

} // namespace

TEST(ExportedSymbols, OnlyTheCFunctionsUnderTheirVersion)
{
    if (!HaveBinutils())
        GTEST_SKIP() << "binutils are not installed";
    const QString listing = OutputOf(QStringLiteral("nm"), {"-D", "--defined-only", TAMERISK_LIBRARY_PATH});
    ASSERT_FALSE(listing.isEmpty());
    QStringList names;
    static const QRegularExpression line(QStringLiteral("^[0-9a-f]+ (\\S) (.+)$"), QRegularExpression::MultilineOption);
    for (auto it = line.globalMatch(listing); it.hasNext();) {
        const QRegularExpressionMatch m = it.next();
        if (m.captured(1) != "A")  // the version node itself
            names << m.captured(2);
    }
    QStringList wanted;
    for (const char* f : {"Open", "Close", "SetAttribute", "GetAttribute", "SetColorBind", "GetColorBind",
                          "ShowWindow", "GetShow", "SetTitle", "GetLastResult", "GetVersion"})
        wanted << QStringLiteral("Tamerisk_%1@@TAMERISK_1").arg(QLatin1String(f));
    wanted << QStringLiteral("Tamerisk_RenderPreview@@TAMERISK_1.1");
    names.sort();
    wanted.sort();
    EXPECT_EQ(names, wanted);
}

TEST(ExportedSymbols, TheSonameCarriesTheMajorVersion)
{
    if (!HaveBinutils())
        GTEST_SKIP() << "binutils are not installed";
    const QString headers = OutputOf(QStringLiteral("objdump"), {"-p", TAMERISK_LIBRARY_PATH});
    static const QRegularExpression soname(QStringLiteral("SONAME\\s+(\\S+)"));
    EXPECT_EQ(soname.match(headers).captured(1),
              QStringLiteral("libtamerisk.so.%1").arg(TAMERISK_VERSION_MAJOR));
    EXPECT_TRUE(QStringLiteral(TAMERISK_LIBRARY_PATH)
                    .endsWith(QStringLiteral(".so." TAMERISK_VERSION_STRING)));
}
