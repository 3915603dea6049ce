#include "host/large_preview_settings.h"

#include <algorithm>

#include <QSettings>

namespace {

const QString kWidthKey = QStringLiteral("LargePreview/Width");
const QString kHeightKey = QStringLiteral("LargePreview/Height");
constexpr int kDefaultSide = 512;
constexpr int kMinSide = 64;
constexpr int kMaxSide = 4096;

int ReadSide(const QSettings& file, const QString& key)
{
    bool number = false;
    const qlonglong side = file.value(key).toString().trimmed().toLongLong(&number);
    return number ? static_cast<int>(std::clamp<qlonglong>(side, kMinSide, kMaxSide)) : kDefaultSide;
}

} // namespace

QSize ReadLargePreviewSize(const QString& filePath)
{
    const QSettings file(filePath, QSettings::IniFormat);
    return {ReadSide(file, kWidthKey), ReadSide(file, kHeightKey)};
}

void WriteLargePreviewSize(const QString& filePath, QSize size)
{
    QSettings file(filePath, QSettings::IniFormat);
    file.setValue(kWidthKey, QString::number(size.width()));
    file.setValue(kHeightKey, QString::number(size.height()));
    file.sync();
}
