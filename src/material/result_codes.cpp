#include "material/result_codes.h"

// Marks the messages for the editor's translations, which the dialogs look
// up (this file uses no Qt; lupdate reads the marker by its name).
#ifndef QT_TRANSLATE_NOOP
#define QT_TRANSLATE_NOOP(context, text) text
#endif

namespace {

// Indexed by -code - 1.
constexpr const char* kMessages[] = {
    QT_TRANSLATE_NOOP("Tamerisk", "何らかのｴﾗｰが起りました。"),
    QT_TRANSLATE_NOOP("Tamerisk", "ﾒﾓﾘｰ不足です。"),
    QT_TRANSLATE_NOOP("Tamerisk", "配列の範囲外にｱｸｾｽしました。"),
    QT_TRANSLATE_NOOP("Tamerisk", "不適当なﾊﾟﾗﾒｰﾀｰです。"),
    QT_TRANSLATE_NOOP("Tamerisk", "ﾌｧｲﾙを開けませんでした。"),
    QT_TRANSLATE_NOOP("Tamerisk", "ﾌｧｲﾙからﾃﾞｰﾀを読み込めませんでした。"),
    QT_TRANSLATE_NOOP("Tamerisk", "ﾌｧｲﾙにﾃﾞｰﾀを書き込めませんでした。"),
    QT_TRANSLATE_NOOP("Tamerisk", "未対応のﾃﾞｰﾀ形式です。"),
    QT_TRANSLATE_NOOP("Tamerisk", "ﾊﾞｰｼﾞｮﾝの異なるﾌｧｲﾙです。"),
    QT_TRANSLATE_NOOP("Tamerisk", "最大値を超えています。"),
    QT_TRANSLATE_NOOP("Tamerisk", "ﾃﾞｰﾀがありません。"),
};
static_assert(sizeof(kMessages) / sizeof(kMessages[0]) == -ResultCode(FZResult::NoData));

}  // namespace

const char* ResultMessage(FZResult result)
{
    const int code = ResultCode(result);
    if (code < ResultCode(FZResult::NoData) || code >= 0)
        return nullptr;
    return kMessages[-code - 1];
}
