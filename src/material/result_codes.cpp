#include "material/result_codes.h"

namespace {

// Indexed by -code - 1.
constexpr const char* kMessages[] = {
    "何らかのｴﾗｰが起りました。",
    "ﾒﾓﾘｰ不足です。",
    "配列の範囲外にｱｸｾｽしました。",
    "不適当なﾊﾟﾗﾒｰﾀｰです。",
    "ﾌｧｲﾙを開けませんでした。",
    "ﾌｧｲﾙからﾃﾞｰﾀを読み込めませんでした。",
    "ﾌｧｲﾙにﾃﾞｰﾀを書き込めませんでした。",
    "未対応のﾃﾞｰﾀ形式です。",
    "ﾊﾞｰｼﾞｮﾝの異なるﾌｧｲﾙです。",
    "最大値を超えています。",
    "ﾃﾞｰﾀがありません。",
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
