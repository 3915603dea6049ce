// A material of the demo host that the host edits with an editor of its own:
// a CDlgAttribute the slot creates, owns and deletes, whose notifications
// ("更新" or the space bar) come to the slot. The host keeps two, each with
// its own material and its own editor, beside the editor of the C functions.
#ifndef TAMERISK_HOST_APP_MATERIAL_SLOT_H
#define TAMERISK_HOST_APP_MATERIAL_SLOT_H

#include <memory>

#include <QWidget>

#include <tamerisk/dlg_attribute.h>

class QLabel;

class MaterialSlot : public QWidget {
public:
    MaterialSlot(const QString& name, const FZAttributeEx& material, QWidget* parent);
    ~MaterialSlot() override;

    // Opens the slot's editor with its material, or brings back the one that
    // is open.
    void OpenEditor();
    CDlgAttribute* Editor() const { return editor.get(); }

protected:
    bool event(QEvent* event) override;

private:
    void ShowMaterial();

    const QString name;
    FZAttributeEx material;
    const unsigned int notifyMessage;
    int updatesReceived = 0;
    QLabel* swatch = nullptr;
    QLabel* summary = nullptr;
    std::unique_ptr<CDlgAttribute> editor;
};

#endif
