#include <tamerisk/dlg_attribute.h>

#include <array>
#include <string>

#include <QCheckBox>
#include <QCloseEvent>
#include <QColorDialog>
#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QKeyEvent>
#include <QMenu>
#include <QMessageBox>
#include <QPaintEvent>
#include <QPushButton>
#include <QScrollBar>

#include <tamerisk/fz_truncate.h>

#include "dialogs/color_swatch.h"
#include "dialogs/dialog_template.h"
#include "dialogs/dlg_attribute_parameters.h"
#include "dialogs/random_color.h"
#include "dialogs/templates.h"
#include "host/settings.h"
#include "material/attribute_file.h"
#include "material/result_codes.h"
#include "preview/preview_panel.h"

namespace {

// The eleven sliders, numbered as GetAttributeFromControl numbers them.
constexpr std::array<int, 11> kSliders = {
    kIdRed, kIdGreen, kIdBlue, kIdAmbient, kIdDiffuse, kIdHighlightStrength,
    kIdSpread, kIdTransparency, kIdRefractiveIndex, kIdEmission, kIdReflection,
};
constexpr int kSliderMax = 64;

// What colour bind disables: the colour sliders, their labels and bitmaps,
// the surface swatch and the random colour buttons.
constexpr int kColorControls[] = {
    kIdRed, kIdGreen, kIdBlue, kIdRedLabel, kIdGreenLabel, kIdBlueLabel,
    kIdRedBitmap, kIdGreenBitmap, kIdBlueBitmap, kIdColorSwatch, kIdRandom, kIdRandomType,
};

constexpr int kShapeCount = 4;

const char* const kSwatchLabel = "色選択";
constexpr int kSwatchFontHeight = 11;
constexpr int kHighlightSwatchFontHeight = 9;

// The slider position that shows a record value v in 0..1.
int Position(float v)
{
    return FZTruncate(static_cast<double>(v) * kSliderMax);
}

int SliderPosition(const FZAttributeEx& a, int control)
{
    switch (control) {
    case 0: return a.color.r * kSliderMax / 255;
    case 1: return a.color.g * kSliderMax / 255;
    case 2: return a.color.b * kSliderMax / 255;
    case 3: return Position(a.ambient);
    case 4: return Position(a.diffuse);
    case 5: return Position(a.highlightStrength);
    case 6: return FZTruncate((1.0 - static_cast<double>(a.highlightSharpness)) * kSliderMax);
    case 7: return Position(a.transparency);
    case 8: return FZTruncate(static_cast<double>(a.refractiveIndex) * kSliderMax / 2.0);
    case 9: return Position(a.emission);
    case 10: return Position(a.reflection);
    default: return 0;
    }
}

std::uint8_t ColorByte(float v)
{
    return static_cast<std::uint8_t>(FZTruncateClamped(static_cast<double>(v) * 255.0, 0, 255));
}

// Paints a swatch of the colour, labelled "色選択", into the button.
void DrawSwatch(const FZColor& color, int fontHeight, QWidget* button)
{
    CColorSwatch swatch;
    float r, g, b;
    color.GetFloats(r, g, b);
    swatch.SetColor(r, g, b);
    swatch.SetFontHeight(fontHeight);
    swatch.SetLabel(QString::fromUtf8(kSwatchLabel));
    swatch.Draw(button);
}

// Events that reach a dialog through the message loop: the state of the
// controls is brought up to date on each of them.
bool IsQueuedEvent(const QEvent* event)
{
    switch (event->type()) {
    case QEvent::Paint:
    case QEvent::Timer:
    case QEvent::Enter:
    case QEvent::Leave:
    case QEvent::HoverMove:
    case QEvent::Show:
    case QEvent::WindowActivate:
        return true;
    default:
        return event->isInputEvent();
    }
}

// The file dialog of "開く" and "保存": material files first, starting in
// the current directory. An empty path when the user cancels.
QString AskFilePath(QFileDialog::AcceptMode mode)
{
    QFileDialog dialog(nullptr, QString(), QDir::currentPath(),
                       QString::fromUtf8("質感ﾌｧｲﾙ (*.qva);;すべてのﾌｧｲﾙ (*.*)"));
    dialog.setAcceptMode(mode);
    dialog.setFileMode(mode == QFileDialog::AcceptSave ? QFileDialog::AnyFile
                                                       : QFileDialog::ExistingFile);
    dialog.setDefaultSuffix(QStringLiteral("qva"));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return QString();
    return dialog.selectedFiles().front();
}

} // namespace

CDlgAttribute::CDlgAttribute(QWidget* parent)
    : QDialog(parent), preview(std::make_unique<CPreviewPanel>())
{
}

CDlgAttribute::CDlgAttribute(QWidget* notifyWindow, unsigned int notifyMessage)
    : QDialog(nullptr), notifyWindow(notifyWindow), notifyMessage(notifyMessage),
      preview(std::make_unique<CPreviewPanel>())
{
}

CDlgAttribute::~CDlgAttribute()
{
    if (created)
        OnDestroy();
    preview.reset();
}

bool CDlgAttribute::Create()
{
    if (created)
        return false;
    BuildDialog(*this, AttributeDialogTemplate());
    ConnectHandlers();
    created = true;
    return OnInitDialog();
}

void CDlgAttribute::SetAttribute(const FZAttributeEx& a)
{
    attribute = a;
}

void CDlgAttribute::GetAttribute(FZAttributeEx& a) const
{
    a = attribute;
}

void CDlgAttribute::SetColorBind(int bind)
{
    colorBind = bind;
}

int CDlgAttribute::GetColorBind() const
{
    return colorBind;
}

void CDlgAttribute::UpdatePanelView()
{
    UpdateControlsFromAttribute();
    SetColorControlsOnOff();
    ReDraw();
}

// The dialog's message map: every control's signal meets its handler here.
void CDlgAttribute::ConnectHandlers()
{
    const auto onClick = [this](int id, void (CDlgAttribute::*handler)()) {
        if (auto* button = DlgItem<QAbstractButton>(this, id))
            connect(button, &QAbstractButton::clicked, this, handler);
    };
    onClick(kIdUpdate, &CDlgAttribute::OnButtonUpdate);
    onClick(kIdColorSwatch, &CDlgAttribute::OnButtonColor);
    onClick(kIdHighlightSwatch, &CDlgAttribute::OnButtonHighlightColor);
    onClick(kIdRandom, &CDlgAttribute::OnButtonColorRandom);
    onClick(kIdAnisotropic, &CDlgAttribute::OnCheckAnisotropic);
    onClick(kIdLoad, &CDlgAttribute::OnButtonLoad);
    onClick(kIdSave, &CDlgAttribute::OnButtonSave);
    onClick(kIdColorTransparency, &CDlgAttribute::OnCheckColorTransparency);
    onClick(kIdSmooth, &CDlgAttribute::OnCheckHighlightSmooth);
    onClick(kIdRandomType, &CDlgAttribute::OnButtonColorRandomType);
    onClick(kIdRainbow, &CDlgAttribute::OnCheckRainbowHighlight);
    onClick(kIdAnisotropicParameter, &CDlgAttribute::OnButtonAnisotropicParameter);
    onClick(kIdRainbowParameter, &CDlgAttribute::OnButtonRainbowHighlightParameter);
    onClick(kIdTransparencyParameter, &CDlgAttribute::OnButtonTransparencyParameter);
    onClick(kIdShapePrevious, &CDlgAttribute::OnButtonSampleShapePrevious);
    onClick(kIdShapeNext, &CDlgAttribute::OnButtonSampleShapeNext);

    for (int id : kSliders)
        ConnectHScroll(DlgItem<QScrollBar>(this, id),
                       [this](QScrollBar* bar, int p) { OnHScroll(bar, p); });

    // Every event of the dialog and of its controls passes
    // PreTranslateMessage first.
    installEventFilter(this);
    for (QWidget* child : findChildren<QWidget*>())
        child->installEventFilter(this);
}

bool CDlgAttribute::OnInitDialog()
{
    for (int id : kSliders) {
        if (auto* bar = DlgItem<QScrollBar>(this, id)) {
            bar->setRange(0, kSliderMax);
            bar->setValue(0);
        }
    }
    colorBind = 0;
    UpdateControlsFromAttribute();
    MakePreviewSquare();
    // A failed set-up leaves the preview without a scene: the dialog still
    // works, the preview just stays blank, so the result is not shown.
    static_cast<void>(preview->SetUp(GetDlgItem(this, kIdPreview)));
    sampleShape = 1;
    ReDraw();
    LoadParameter();
    randomFamily = 0;
    return true;
}

void CDlgAttribute::MakePreviewSquare()
{
    QWidget* control = GetDlgItem(this, kIdPreview);
    if (control == nullptr)
        return;
    const QRect r = control->geometry();
    const int side = r.width() - r.width() % 2;
    control->setGeometry(r.x(), r.y(), side, side);
}

bool CDlgAttribute::eventFilter(QObject* watched, QEvent* event)
{
    if (PreTranslateMessage(event))
        return true;
    return QDialog::eventFilter(watched, event);
}

bool CDlgAttribute::PreTranslateMessage(QEvent* event)
{
    if (!created)
        return false;
    if (event->type() == QEvent::KeyPress
        && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Space) {
        OnButtonUpdate();
        return true;
    }
    if (IsQueuedEvent(event))
        SyncEnabling();
    return false;
}

void CDlgAttribute::SyncEnabling()
{
    SetColorControlsOnOff();
    EnableDlgItem(this, kIdAnisotropicParameter, IsDlgButtonChecked(this, kIdAnisotropic));
    EnableDlgItem(this, kIdRainbowParameter, IsDlgButtonChecked(this, kIdRainbow));
    EnableDlgItem(this, kIdTransparencyParameter, attribute.transparency != 0.0f);
}

void CDlgAttribute::closeEvent(QCloseEvent* event)
{
    OnClose();
    // Closing only puts the window away; it must not count as a closed
    // window for the host application.
    event->ignore();
}

void CDlgAttribute::accept()
{
    OnOK();
}

void CDlgAttribute::reject()
{
    OnClose();
}

void CDlgAttribute::OnClose()
{
    showMinimized();
    hide();
}

void CDlgAttribute::OnOK()
{
    showMinimized();
    hide();
}

void CDlgAttribute::OnDestroy()
{
    SaveParameter();
}

void CDlgAttribute::paintEvent(QPaintEvent* event)
{
    QDialog::paintEvent(event);
    OnPaint(event->region());
}

void CDlgAttribute::OnPaint(const QRegion& region)
{
    // A control repainting itself (a button under the mouse) also repaints
    // the dialog beneath it; only a paint of the dialog's own surface redraws
    // the preview and the swatches.
    QRegion own = region;
    for (QWidget* child : findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        if (child->isVisible() && !child->isWindow())
            own -= child->geometry();
    }
    if (!own.isEmpty())
        ReDraw();
}

void CDlgAttribute::contextMenuEvent(QContextMenuEvent* event)
{
    OnContextMenu(event->globalPos());
}

void CDlgAttribute::OnContextMenu(const QPoint& globalPos)
{
    QWidget* random = GetDlgItem(this, kIdRandom);
    if (random == nullptr)
        return;
    // The button's window rectangle, its right and bottom edges included.
    const QPoint topLeft = random->mapToGlobal(QPoint(0, 0));
    if (globalPos.x() >= topLeft.x() && globalPos.x() <= topLeft.x() + random->width()
        && globalPos.y() >= topLeft.y() && globalPos.y() <= topLeft.y() + random->height())
        RandomButtonSubMenu(globalPos);
}

void CDlgAttribute::OnButtonUpdate()
{
    if (notifyWindow.isNull()) {
        ShowMessage(QString::fromUtf8("送信相手がいない。"));
        return;
    }
    QEvent notification(static_cast<QEvent::Type>(notifyMessage));
    QCoreApplication::sendEvent(notifyWindow.data(), &notification);
}

void CDlgAttribute::OnHScroll(QScrollBar* bar, int position)
{
    double v = position / static_cast<double>(kSliderMax);
    v = v < 0.0 ? 0.0 : (v > 1.0 ? 1.0 : v);
    const QString name = bar->objectName();
    for (int control = 0; control < static_cast<int>(kSliders.size()); ++control) {
        if (name == QString::number(kSliders[control])) {
            GetAttributeFromControl(control, static_cast<float>(v));
            break;
        }
    }
    ReDraw();
}

void CDlgAttribute::GetAttributeFromControl(int control, float v)
{
    switch (control) {
    case 0: attribute.color.r = ColorByte(v); break;
    case 1: attribute.color.g = ColorByte(v); break;
    case 2: attribute.color.b = ColorByte(v); break;
    case 3: attribute.ambient = v; break;
    case 4: attribute.diffuse = v; break;
    case 5: attribute.highlightStrength = v; break;
    case 6: attribute.highlightSharpness = static_cast<float>(1.0 - v); break;
    case 7: attribute.transparency = v; break;
    case 8: attribute.refractiveIndex = static_cast<float>(2.0 * v); break;
    case 9: attribute.emission = v; break;
    case 10: attribute.reflection = v; break;
    default: break;
    }
}

void CDlgAttribute::UpdateControlsFromAttribute()
{
    for (int control = 0; control < static_cast<int>(kSliders.size()); ++control) {
        // The bar holds a position beyond its range at the nearer end.
        if (auto* bar = DlgItem<QScrollBar>(this, kSliders[control]))
            bar->setValue(SliderPosition(attribute, control));
    }
    CheckDlgButton(this, kIdColorTransparency, attribute.colorTransparency != 0);
    CheckDlgButton(this, kIdAnisotropic, attribute.anisotropic != 0);
    CheckDlgButton(this, kIdRainbow, attribute.rainbow != 0);
    CheckDlgButton(this, kIdSmooth, attribute.smoothHighlight != 0);
}

void CDlgAttribute::SetColorControlsOnOff()
{
    for (int id : kColorControls)
        EnableDlgItem(this, id, colorBind == 0);
}

void CDlgAttribute::ReDraw()
{
    // A frame that could not be rendered is not shown; the last one stays.
    if (preview->BuildSampleShape(sampleShape) == FZResult::Ok
        && preview->ApplyMaterial(attribute, colorBind) == FZResult::Ok)
        preview->Present(GetDlgItem(this, kIdPreview));
    DrawColorPallete();
    DrawHighlightColorPallete();
    // The enabling follows every change at once rather than at the next
    // event.
    SyncEnabling();
}

void CDlgAttribute::DrawColorPallete()
{
    DrawSwatch(attribute.color, kSwatchFontHeight, GetDlgItem(this, kIdColorSwatch));
}

void CDlgAttribute::DrawHighlightColorPallete()
{
    DrawSwatch(attribute.highlightColor, kHighlightSwatchFontHeight,
               GetDlgItem(this, kIdHighlightSwatch));
}

bool CDlgAttribute::PickColor(FZColor& color)
{
    // Qt's own picker always shows the custom colour part, as asked.
    QColorDialog picker(QColor(color.r, color.g, color.b), nullptr);
    picker.setOption(QColorDialog::DontUseNativeDialog);
    if (picker.exec() != QDialog::Accepted)
        return false;
    const QColor chosen = picker.selectedColor();
    color.SetBytes(static_cast<std::uint8_t>(chosen.red()), static_cast<std::uint8_t>(chosen.green()),
                   static_cast<std::uint8_t>(chosen.blue()));
    return true;
}

void CDlgAttribute::OnButtonColor()
{
    if (!PickColor(attribute.color))
        return;
    UpdateControlsFromAttribute();
    ReDraw();
}

void CDlgAttribute::OnButtonHighlightColor()
{
    if (!PickColor(attribute.highlightColor))
        return;
    UpdateControlsFromAttribute();
    ReDraw();
}

void CDlgAttribute::OnButtonColorRandom()
{
    float rgb[3];
    DrawFamilyColor(randomFamily, attribute.color, rgb);
    attribute.color.SetFloats(rgb);
    UpdateControlsFromAttribute();
    ReDraw();
}

void CDlgAttribute::OnButtonColorRandomType()
{
    QWidget* button = GetDlgItem(this, kIdRandomType);
    if (button == nullptr)
        return;
    const QPoint topLeft = button->mapToGlobal(QPoint(0, 0));
    const int left = topLeft.x();
    const int top = topLeft.y();
    const int right = left + button->width();
    const int bottom = top + button->height();
    RandomButtonSubMenu(QPoint((left + right) / 2, (top + bottom) / 2));
}

void CDlgAttribute::RandomButtonSubMenu(const QPoint& globalPos)
{
    QMenu menu(this);
    for (const FamilyMenuItem& item : FamilyMenuItems()) {
        QAction* action = menu.addAction(QString::fromUtf8(item.text));
        action->setData(kFamilyCommandBase + item.family);
        action->setCheckable(true);
        action->setChecked(item.family == randomFamily);
        if (item.family == kFamilyAll)
            menu.addSeparator();
    }
    // Choosing a family draws no colour; the next "ﾗﾝﾀﾞﾑ" does.
    if (const QAction* chosen = menu.exec(globalPos))
        randomFamily = chosen->data().toInt() - kFamilyCommandBase;
}

void CDlgAttribute::OnCheckAnisotropic()
{
    attribute.anisotropic = IsDlgButtonChecked(this, kIdAnisotropic) ? 1 : 0;
    ReDraw();
}

void CDlgAttribute::OnCheckRainbowHighlight()
{
    attribute.rainbow = IsDlgButtonChecked(this, kIdRainbow) ? 1 : 0;
    ReDraw();
}

void CDlgAttribute::OnCheckHighlightSmooth()
{
    if (IsDlgButtonChecked(this, kIdSmooth)) {
        attribute.smoothHighlight = 1;
        attribute.smoothWidth = 2.0f;
    } else {
        attribute.smoothHighlight = 0;
    }
    ReDraw();
}

void CDlgAttribute::OnCheckColorTransparency()
{
    // Stored for the host; nothing on the preview depends on it.
    attribute.colorTransparency = IsDlgButtonChecked(this, kIdColorTransparency) ? 1 : 0;
}

void CDlgAttribute::OpenParameterDialog(int (*run)(FZAttributeEx&, int, int&))
{
    FZAttributeEx copy = attribute;
    int shape = preview->ShapeNumber();
    if (run(copy, colorBind, shape) == kIdOk)
        attribute = copy;
    sampleShape = shape;
    ReDraw();
}

void CDlgAttribute::OnButtonAnisotropicParameter()
{
    OpenParameterDialog(RunAnisotropicParameterDialog);
}

void CDlgAttribute::OnButtonRainbowHighlightParameter()
{
    OpenParameterDialog(RunRainbowParameterDialog);
}

void CDlgAttribute::OnButtonTransparencyParameter()
{
    OpenParameterDialog(RunTransparencyParameterDialog);
}

void CDlgAttribute::OnButtonSampleShapePrevious()
{
    sampleShape = sampleShape - 1 < 1 ? kShapeCount : sampleShape - 1;
    ReDraw();
}

void CDlgAttribute::OnButtonSampleShapeNext()
{
    sampleShape = sampleShape + 1 > kShapeCount ? 1 : sampleShape + 1;
    ReDraw();
}

void CDlgAttribute::OnButtonLoad()
{
    const QString path = AskFilePath(QFileDialog::AcceptOpen);
    if (!path.isEmpty())
        ShowResult(LoadFile(path));
}

void CDlgAttribute::OnButtonSave()
{
    const QString path = AskFilePath(QFileDialog::AcceptSave);
    if (path.isEmpty())
        return;
    // Below the message, which file and why: a full disk and a write-protected
    // file call for different remedies.
    QString reason;
    if (const char* message = ResultMessage(SaveFile(path, &reason)))
        ShowMessage(QString::fromUtf8(message) + u'\n' + path + QStringLiteral(": ") + reason);
}

FZResult CDlgAttribute::LoadFile(const QString& path)
{
    FZAttributeEx loaded = attribute;
    const FZResult code = LoadAttributeFile(QFile::encodeName(path).constData(), loaded);
    if (code == FZResult::Ok) {
        SetAttribute(loaded);
        UpdatePanelView();
    }
    return code;
}

FZResult CDlgAttribute::SaveFile(const QString& path, QString* reason)
{
    FZAttributeEx record;
    GetAttribute(record);
    std::string why;
    const FZResult code = SaveAttributeFile(QFile::encodeName(path).constData(), record, &why);
    if (reason != nullptr)
        *reason = QString::fromLocal8Bit(why);
    return code;
}

void CDlgAttribute::ShowResult(FZResult code)
{
    if (const char* message = ResultMessage(code))
        ShowMessage(QString::fromUtf8(message));
}

void CDlgAttribute::ShowMessage(const QString& text)
{
    // Owned by the dialog, captioned with the application's name.
    QMessageBox box(QMessageBox::NoIcon, QCoreApplication::applicationName(), text,
                    QMessageBox::Ok, this);
    box.exec();
}

void CDlgAttribute::LoadParameter()
{
    LoadWindowPlacement(this);
}

void CDlgAttribute::SaveParameter()
{
    SaveWindowPlacement(this);
}
