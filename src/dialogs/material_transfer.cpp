#include "dialogs/material_transfer.h"

#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

#include "json/material_json.h"
#include "material/attribute_file.h"
#include "material/result_codes.h"

QString MaterialToClipboardText(const FZAttributeEx& record)
{
    return QString::fromUtf8(MaterialToJson(record, kAttributeFileHeader.currentVersion));
}

FZResult MaterialFromClipboardText(const QString& text, FZAttributeEx& record)
{
    // The length in UTF-16 units bounds the UTF-8 bytes from below, so the
    // first check refuses a huge paste without converting it.
    if (text.size() > kMaxPastedBytes)
        return FZResult::TooLarge;
    const QByteArray bytes = text.toUtf8();
    if (bytes.size() > kMaxPastedBytes)
        return FZResult::TooLarge;
    FZAttributeEx read = record;
    QString message;
    const FZResult rc = ParseMaterial(bytes, read, message);
    if (rc == FZResult::Ok)
        record = read;
    return rc;
}

QString DraggedAttributeFile(const QMimeData* data)
{
    if (data == nullptr || !data->hasUrls() || data->urls().size() != 1)
        return {};
    const QUrl url = data->urls().front();
    if (!url.isLocalFile())
        return {};
    const QFileInfo file(url.toLocalFile());
    const bool qva = file.suffix().compare(u"qva", Qt::CaseInsensitive) == 0;
    return qva && !file.isDir() ? file.filePath() : QString();
}
