#include "platform/controls/PopupMenu.h"

#include <QComboBox>
#include <QSignalBlocker>
#include <QWheelEvent>

#include "platform/qt/Native.h"
#include "platform/qt/QtText.h"

namespace {

class ComboBox : public QComboBox {
  public:
    using QComboBox::QComboBox;

  protected:
    // While closed it leaves the wheel alone: a turn over it on the way elsewhere changes nothing.
    void wheelEvent(QWheelEvent* event) override { event->ignore(); }
};

QComboBox* Combo(const PopupMenu& popup) { return static_cast<QComboBox*>(popup.Native()); }

}  // namespace

PopupMenu::PopupMenu(Window& owner, std::string name)
    : RectControl(std::move(name), new ComboBox(ContentOf(owner))) {
    QComboBox* combo = Combo(*this);
    combo->setFocusPolicy(Qt::StrongFocus);
    combo->setMinimumSize(0, 0);
    QObject::connect(combo, &QComboBox::currentIndexChanged, combo, [this] { Raise(Change); });
}

void PopupMenu::AddRow(std::string_view text) {
    const QSignalBlocker quiet(Combo(*this));
    const int selected = Combo(*this)->currentIndex();
    Combo(*this)->addItem(ToQt(text));
    Combo(*this)->setCurrentIndex(selected);  // Qt selects the first row by itself
}

void PopupMenu::DeleteAllRows() {
    const bool selected = ListIndex() >= 0;
    {
        const QSignalBlocker quiet(Combo(*this));
        Combo(*this)->clear();
    }
    if (selected) Raise(Change);
}

std::string PopupMenu::List(std::int64_t row) const {
    return FromQt(Combo(*this)->itemText(static_cast<int>(row)));
}

std::int64_t PopupMenu::ListCount() const { return Combo(*this)->count(); }

std::int64_t PopupMenu::ListIndex() const { return Combo(*this)->currentIndex(); }

void PopupMenu::ListIndex(std::int64_t row) {
    {
        const QSignalBlocker quiet(Combo(*this));
        Combo(*this)->setCurrentIndex(row >= 0 && row < ListCount() ? static_cast<int>(row) : -1);
    }
    Raise(Change);
}

std::string PopupMenu::Text() const { return FromQt(Combo(*this)->currentText()); }

void PopupMenu::RaiseOpen() { Raise(Open); }
