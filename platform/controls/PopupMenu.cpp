#include "platform/controls/PopupMenu.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QKeyEvent>
#include <QSignalBlocker>
#include <QWheelEvent>

#include "platform/qt/ControlWidget.h"
#include "platform/qt/OpenEdit.h"
#include "platform/qt/QtText.h"

namespace {

bool IsCtrlReturn(const QKeyEvent& event) {
    return event.modifiers().testFlag(Qt::ControlModifier) &&
           (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter);
}

class ComboBox : public QComboBox {
  public:
    using QComboBox::QComboBox;

    void showPopup() override {
        QComboBox::showPopup();
        view()->installEventFilter(this);
    }

  protected:
    // A closed list ignores the wheel, so that scrolling past it doesn't change the choice.
    void wheelEvent(QWheelEvent* event) override { event->ignore(); }

    // Ctrl+Return in the open list takes the row, as Return does, and then acts as the shortcut of
    // the window. Qt 6.4 does so by itself, Qt 6.8 doesn't.
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() != QEvent::ShortcutOverride ||
            !IsCtrlReturn(static_cast<const QKeyEvent&>(*event)))
            return QComboBox::eventFilter(object, event);
        setCurrentIndex(view()->currentIndex().row());
        hidePopup();
        event->ignore();
        return true;
    }
};

QComboBox& Combo(const PopupMenu& popup) { return WidgetOf<QComboBox>(popup); }

}  // namespace

PopupMenu::PopupMenu(Window& owner, std::string name)
    : RectControl(std::move(name), Owned(new ComboBox(ContentOf(owner)))) {
    QComboBox& combo = Combo(*this);
    combo.setFocusPolicy(Qt::StrongFocus);
    combo.setMinimumSize(0, 0);
    QObject::connect(&combo, &QComboBox::currentIndexChanged, &combo, [this] {
        CommitOpenEdit();
        Raise(Change);
    });
}

void PopupMenu::AddRow(std::string_view text) {
    const QSignalBlocker quiet(&Combo(*this));
    const int selected = Combo(*this).currentIndex();
    Combo(*this).addItem(ToQt(text));
    Combo(*this).setCurrentIndex(selected);  // Qt selects the first row by itself
}

void PopupMenu::DeleteAllRows() {
    const bool selected = ListIndex() >= 0;
    {
        const QSignalBlocker quiet(&Combo(*this));
        Combo(*this).clear();
    }
    if (selected) Raise(Change);
}

std::string PopupMenu::List(std::int64_t row) const {
    return FromQt(Combo(*this).itemText(static_cast<int>(row)));
}

std::int64_t PopupMenu::ListCount() const { return Combo(*this).count(); }

std::int64_t PopupMenu::ListIndex() const { return Combo(*this).currentIndex(); }

void PopupMenu::ListIndex(std::int64_t row) {
    {
        const QSignalBlocker quiet(&Combo(*this));
        Combo(*this).setCurrentIndex(row >= 0 && row < ListCount() ? static_cast<int>(row) : -1);
    }
    Raise(Change);
}

std::string PopupMenu::Text() const { return FromQt(Combo(*this).currentText()); }

void PopupMenu::RaiseOpen() { Raise(Open); }
