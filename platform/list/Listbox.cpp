#include "platform/list/Listbox.h"

#include "platform/list/private/AccessibleTable.h"
#include "platform/list/private/CellDelegate.h"
#include "platform/list/private/ListModel.h"
#include "platform/list/private/ListView.h"
#include "platform/qt/ControlWidget.h"
#include "platform/qt/QtText.h"

namespace {

ListView& View(const Listbox& list) { return WidgetOf<ListView>(list); }
ListModel& Model(const Listbox& list) { return static_cast<ListModel&>(*View(list).model()); }

// Returns nullptr outside the table.
QStandardItem* Item(const Listbox& list, std::int64_t row, std::int64_t column) {
    const bool inside = row >= 0 && row < Model(list).rowCount() && column >= 0 &&
                        column < Model(list).columnCount();
    return inside ? Model(list).item(static_cast<int>(row), static_cast<int>(column)) : nullptr;
}

}  // namespace

Listbox::Listbox(Window& owner, std::string name, const std::vector<std::string>& headings,
                 int fixedWidth)
    : RectControl(std::move(name), Owned(new ListView(ContentOf(owner)))) {
    InstallAccessibleTable();
    ListView& view = View(*this);
    auto* model = new ListModel(&view);
    for (const std::string& heading : headings)
        model->setHorizontalHeaderItem(model->columnCount(), new QStandardItem(ToQt(heading)));
    model->Edited = [this](int row, int column) { Raise(CellTextChange, row, column); };
    view.setModel(model);
    view.setItemDelegate(new CellDelegate(view, [this](Graphics& graphics, int row, int column) {
        return Raise(CellBackgroundPaint, graphics, row, column);
    }));
    view.SetFixedWidth(fixedWidth);
    view.DoubleClicked = [this] { Raise(DoubleClick); };
    view.DeletePressed = [this] { Raise(DeleteKey); };
    QObject::connect(view.selectionModel(), &QItemSelectionModel::selectionChanged, &view, [this] {
        if (!mClearing) Raise(Change);
    });
}

void Listbox::CellHint(std::string_view hint) { Model(*this).Hint = ToQt(hint); }

std::string Listbox::Cell(std::int64_t row, std::int64_t column) const {
    const QStandardItem* item = Item(*this, row, column);
    return item ? FromQt(item->text()) : std::string();
}

void Listbox::Cell(std::int64_t row, std::int64_t column, std::string_view text) {
    if (QStandardItem* item = Item(*this, row, column)) item->setText(ToQt(text));
    View(*this).viewport()->update();  // another cell of the row may show or hide its hint
}

Variant Listbox::CellTag(std::int64_t row, std::int64_t column) const {
    const QStandardItem* item = Item(*this, row, column);
    return item ? item->data(ListModel::kTagRole).value<Variant>() : Variant();
}

void Listbox::CellTag(std::int64_t row, std::int64_t column, const Variant& tag) {
    if (QStandardItem* item = Item(*this, row, column))
        item->setData(QVariant::fromValue(tag), ListModel::kTagRole);
}

void Listbox::CellType(std::int64_t row, std::int64_t column, int type) {
    if (QStandardItem* item = Item(*this, row, column)) item->setEditable(type == kEditableCell);
}

std::int64_t Listbox::ListIndex() const { return View(*this).SelectedRow(); }

std::int64_t Listbox::ListCount() const { return Model(*this).rowCount(); }

void Listbox::AddRow(const std::vector<std::string>& texts) {
    QList<QStandardItem*> items;
    for (std::size_t i = 0; i < static_cast<std::size_t>(Model(*this).columnCount()); ++i) {
        items += new QStandardItem(i < texts.size() ? ToQt(texts[i]) : QString());
        items.last()->setEditable(false);
    }
    Model(*this).appendRow(items);
}

void Listbox::RemoveRows(std::int64_t row, std::int64_t count) {
    const bool selected = ListIndex() >= 0;
    mClearing = true;
    View(*this).selectionModel()->clear();
    mClearing = false;
    Model(*this).removeRows(static_cast<int>(row), static_cast<int>(count));
    if (selected) Raise(Change);
}

void Listbox::RemoveRow(std::int64_t row) {
    if (Item(*this, row, 0)) RemoveRows(row, 1);
}

void Listbox::DeleteAllRows() { RemoveRows(0, ListCount()); }

void Listbox::RaiseOpen() { Raise(Open); }
