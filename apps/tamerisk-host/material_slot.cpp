#include "material_slot.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>

MaterialSlot::MaterialSlot(const QString& name, const FZAttributeEx& material, QWidget* parent)
    : QWidget(parent), name(name), material(material),
      notifyMessage(static_cast<unsigned int>(QEvent::registerEventType()))
{
    auto* edit = new QPushButton(QStringLiteral("Edit %1").arg(name), this);
    swatch = new QLabel(this);
    swatch->setFrameShape(QFrame::Box);
    swatch->setFixedSize(50, 26);
    summary = new QLabel(this);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(edit);
    layout->addWidget(swatch);
    layout->addWidget(summary, 1);
    connect(edit, &QPushButton::clicked, this, [this] { OpenEditor(); });
    ShowMaterial();
}

// Deleting the editor destroys its window, which remembers its place when it
// is the editor that holds the settings file's.
MaterialSlot::~MaterialSlot() = default;

void MaterialSlot::OpenEditor()
{
    if (!editor) {
        // This window receives the editor's notifications.
        editor = std::make_unique<CDlgAttribute>(this, notifyMessage);
        editor->Create();
        editor->setWindowTitle(QStringLiteral("質感 ﾘﾓｺﾝ - %1").arg(name));
        editor->SetAttribute(material);
        editor->UpdatePanelView();
    }
    editor->showNormal();
    editor->raise();
    editor->activateWindow();
}

bool MaterialSlot::event(QEvent* event)
{
    if (event->type() != static_cast<QEvent::Type>(notifyMessage))
        return QWidget::event(event);
    // Sent, not posted: the editor's record is what the user applied.
    editor->GetAttribute(material);
    ++updatesReceived;
    ShowMaterial();
    return true;
}

void MaterialSlot::ShowMaterial()
{
    QPixmap colour(48, 24);
    colour.fill(QColor(material.color.r, material.color.g, material.color.b));
    swatch->setPixmap(colour);
    summary->setText(QStringLiteral("diffuse %1, reflection %2; updates received: %3")
                         .arg(material.diffuse, 0, 'g', 3)
                         .arg(material.reflection, 0, 'g', 3)
                         .arg(updatesReceived));
}
