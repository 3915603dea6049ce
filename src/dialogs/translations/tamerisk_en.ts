<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="ja">
<context>
    <name>Tamerisk</name>
    <message>
        <source>ﾌﾟﾚﾋﾞｭｰ</source>
        <translation>Preview</translation>
    </message>
    <message>
        <source>全色</source>
        <translation>All colours</translation>
    </message>
    <message>
        <source>原色</source>
        <translation>Primary colours</translation>
    </message>
    <message>
        <source>ﾊﾟｽﾃﾙｶﾗｰ</source>
        <translation>Pastel colours</translation>
    </message>
    <message>
        <source>灰色</source>
        <translation>Greys</translation>
    </message>
    <message>
        <source>明色</source>
        <translation>Light colours</translation>
    </message>
    <message>
        <source>暗色</source>
        <translation>Dark colours</translation>
    </message>
    <message>
        <source>暖色</source>
        <translation>Warm colours</translation>
    </message>
    <message>
        <source>寒色</source>
        <translation>Cool colours</translation>
    </message>
    <message>
        <source>近い色</source>
        <translation>Near the colour</translation>
    </message>
    <message>
        <source>環境光反射率</source>
        <translation>Ambient</translation>
    </message>
    <message>
        <source>拡散反射率</source>
        <translation>Diffuse</translation>
    </message>
    <message>
        <source>透明度</source>
        <translation>Clarity</translation>
    </message>
    <message>
        <source>屈折率</source>
        <translation>Refraction</translation>
    </message>
    <message>
        <source>発光率</source>
        <translation>Emission</translation>
    </message>
    <message>
        <source>映りこみ</source>
        <translation>Reflection</translation>
    </message>
    <message>
        <source>色</source>
        <translation>Colour</translation>
    </message>
    <message>
        <source>赤</source>
        <translation>R</translation>
    </message>
    <message>
        <source>緑</source>
        <translation>G</translation>
    </message>
    <message>
        <source>青</source>
        <translation>B</translation>
    </message>
    <message>
        <source>ﾗﾝﾀﾞﾑ</source>
        <translation>Roll</translation>
    </message>
    <message>
        <source>透明色</source>
        <translation>Clear colour</translation>
    </message>
    <message>
        <source>ﾊｲﾗｲﾄ</source>
        <translation>Highlight</translation>
    </message>
    <message>
        <source>強度</source>
        <translation>Power</translation>
    </message>
    <message>
        <source>広がり</source>
        <translation>Size</translation>
    </message>
    <message>
        <source>ｽﾑｰｽﾞ</source>
        <translation>Soft</translation>
    </message>
    <message>
        <source>異方性反射</source>
        <translation>Grooves</translation>
    </message>
    <message>
        <source>虹色光沢</source>
        <translation>Rainbow</translation>
    </message>
    <message>
        <source>開く</source>
        <translation>Open</translation>
    </message>
    <message>
        <source>保存</source>
        <translation>Save</translation>
    </message>
    <message>
        <source>更新</source>
        <translation>Update</translation>
    </message>
    <message>
        <source>ｷｬﾝｾﾙ</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>ﾀｲﾌﾟ</source>
        <translation>Type</translation>
    </message>
    <message>
        <source>同心円</source>
        <translation>Rings</translation>
    </message>
    <message>
        <source>波形同心円</source>
        <translation>Wavy rings</translation>
    </message>
    <message>
        <source>波の数</source>
        <translation>Waves</translation>
    </message>
    <message>
        <source>振幅</source>
        <translation>Amp</translation>
    </message>
    <message>
        <source>渦巻き</source>
        <translation>Spiral</translation>
    </message>
    <message>
        <source>渦巻きの回転角</source>
        <translation>Spiral twist</translation>
    </message>
    <message>
        <source>溝の深さ</source>
        <translation>Depth</translation>
    </message>
    <message>
        <source>直線</source>
        <translation>Straight</translation>
    </message>
    <message>
        <source>波型</source>
        <translation>Wave</translation>
    </message>
    <message>
        <source>角度</source>
        <translation>Angle</translation>
    </message>
    <message>
        <source>溝の幅</source>
        <translation>Width</translation>
    </message>
    <message>
        <source>縞模様の間隔</source>
        <translation>Stripe spacing</translation>
    </message>
    <message>
        <source>広い</source>
        <translation>Wide</translation>
    </message>
    <message>
        <source>狭い</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>入射角依存率</source>
        <translation>By angle</translation>
    </message>
    <message>
        <source>減衰率</source>
        <translation>Fading</translation>
    </message>
    <message>
        <source>薄板ｶﾞﾗｽ</source>
        <translation>Thin glass</translation>
    </message>
    <message>
        <source>厚さ</source>
        <translation>Depth</translation>
    </message>
    <message>
        <source>質感 ﾘﾓｺﾝ</source>
        <translation>Material Remote</translation>
    </message>
    <message>
        <source>何らかのｴﾗｰが起りました。</source>
        <translation>An error occurred.</translation>
    </message>
    <message>
        <source>ﾒﾓﾘｰ不足です。</source>
        <translation>Out of memory.</translation>
    </message>
    <message>
        <source>配列の範囲外にｱｸｾｽしました。</source>
        <translation>An array was accessed out of its bounds.</translation>
    </message>
    <message>
        <source>不適当なﾊﾟﾗﾒｰﾀｰです。</source>
        <translation>Unsuitable parameter.</translation>
    </message>
    <message>
        <source>ﾌｧｲﾙを開けませんでした。</source>
        <translation>The file could not be opened.</translation>
    </message>
    <message>
        <source>ﾌｧｲﾙからﾃﾞｰﾀを読み込めませんでした。</source>
        <translation>Data could not be read from the file.</translation>
    </message>
    <message>
        <source>ﾌｧｲﾙにﾃﾞｰﾀを書き込めませんでした。</source>
        <translation>Data could not be written to the file.</translation>
    </message>
    <message>
        <source>未対応のﾃﾞｰﾀ形式です。</source>
        <translation>Unsupported data format.</translation>
    </message>
    <message>
        <source>ﾊﾞｰｼﾞｮﾝの異なるﾌｧｲﾙです。</source>
        <translation>The file is of a different version.</translation>
    </message>
    <message>
        <source>最大値を超えています。</source>
        <translation>The maximum is exceeded.</translation>
    </message>
    <message>
        <source>ﾃﾞｰﾀがありません。</source>
        <translation>There is no data.</translation>
    </message>
    <message>
        <source>色選択</source>
        <translation>Choose</translation>
    </message>
    <message>
        <source>送信相手がいない。</source>
        <translation>There is nobody to send to.</translation>
    </message>
    <message>
        <source>質感ﾌｧｲﾙ</source>
        <translation>Material files</translation>
    </message>
    <message>
        <source>すべてのﾌｧｲﾙ</source>
        <translation>All files</translation>
    </message>
</context>
</TS>
