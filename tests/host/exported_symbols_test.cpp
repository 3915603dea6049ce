// libtamerisk.so exports the host interface, each part under the symbol
// version of the release that added it: the C functions of tamerisk.h under
// TAMERISK_1 and Tamerisk_RenderPreview and the editor class of
// dlg_attribute.h under TAMERISK_1.1, and nothing else. Hosts cannot come to
// depend on the engine, the dialogs' insides or any other C++ member, nor
// clash with them.
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

TEST(ExportedSymbols, OnlyTheHostInterfaceUnderItsVersions)
{
    if (!HaveBinutils())
        GTEST_SKIP() << "binutils are not installed";
    const QString listing = OutputOf(QStringLiteral("nm"), {"-D", "--defined-only", TAMERISK_LIBRARY_PATH});
    ASSERT_FALSE(listing.isEmpty());
    QStringList names;
    static const QRegularExpression line(QStringLiteral("^[0-9a-f]+ (\\S) (.+)$"), QRegularExpression::MultilineOption);
    for (auto it = line.globalMatch(listing); it.hasNext();) {
        const QRegularExpressionMatch m = it.next();
        if (m.captured(1) != "A")  // the version nodes themselves
            names << m.captured(2);
    }
    QStringList wanted;
    for (const char* f : {"Open", "Close", "SetAttribute", "GetAttribute", "SetColorBind", "GetColorBind",
                          "ShowWindow", "GetShow", "SetTitle", "GetLastResult", "GetVersion"})
        wanted << QStringLiteral("Tamerisk_%1@@TAMERISK_1").arg(QLatin1String(f));
    wanted << QStringLiteral("Tamerisk_RenderPreview@@TAMERISK_1.1");
    // CDlgAttribute: both constructors (complete and base object), the
    // destructors, the members of its header, what moc writes for a QObject,
    // its virtual table and type information.
    for (const char* symbol :
         {"_ZN13CDlgAttributeC1EP7QWidget", "_ZN13CDlgAttributeC2EP7QWidget",
          "_ZN13CDlgAttributeC1EP7QWidgetj", "_ZN13CDlgAttributeC2EP7QWidgetj",
          "_ZN13CDlgAttributeD0Ev", "_ZN13CDlgAttributeD1Ev", "_ZN13CDlgAttributeD2Ev",
          "_ZN13CDlgAttribute6CreateEv", "_ZN13CDlgAttribute12SetAttributeERK13FZAttributeEx",
          "_ZNK13CDlgAttribute12GetAttributeER13FZAttributeEx", "_ZN13CDlgAttribute12SetColorBindEi",
          "_ZNK13CDlgAttribute12GetColorBindEv", "_ZN13CDlgAttribute15UpdatePanelViewEv",
          "_ZN13CDlgAttribute4doneEi", "_ZN13CDlgAttribute5eventEP6QEvent",
          "_ZN13CDlgAttribute16staticMetaObjectE", "_ZNK13CDlgAttribute10metaObjectEv",
          "_ZN13CDlgAttribute11qt_metacastEPKc", "_ZN13CDlgAttribute11qt_metacallEN11QMetaObject4CallEiPPv",
          "_ZTV13CDlgAttribute", "_ZTI13CDlgAttribute", "_ZTS13CDlgAttribute"})
        wanted << QStringLiteral("%1@@TAMERISK_1.1").arg(QLatin1String(symbol));
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
