#include "platform/list/Listbox.h"

#include <QTableView>

#include "platform/list/private/CellDelegate.h"
#include "platform/list/private/ListAccess.h"
#include "platform/list/private/ListModel.h"
#include "platform/list/private/ListView.h"
#include "platform/qt/Native.h"

Listbox::Listbox(Window& owner, std::string name, const std::vector<std::string>& headings,
                 int fixedWidth)
    : RectControl(std::move(name),
                  NewListView(ContentOf(owner), {.DoubleClicked = [this] { Raise(DoubleClick); },
                                                 .DeletePressed = [this] { Raise(DeleteKey); }})),
      mModel(std::make_unique<ListModel>(headings)) {
    InstallListAccess();
    QTableView& view = View();
    view.setModel(mModel->Native());
    view.setItemDelegate(NewCellDelegate(view, [this](Graphics& graphics, int row, int column) {
        return Raise(CellBackgroundPaint, graphics, row, column);
    }));
    SetFixedWidth(view, fixedWidth);
    QObject::connect(view.selectionModel(), &QItemSelectionModel::selectionChanged, &view, [this] {
        if (!mClearing) Raise(Change);
    });
    mModel->Edited = [this](int row, int column) { Raise(CellTextChange, row, column); };
}

// The base class destroys the view, after the model. A view without its model closes an open editor
// and reads nothing.
Listbox::~Listbox() { View().setModel(nullptr); }

QTableView& Listbox::View() const { return static_cast<QTableView&>(*Native()); }

void Listbox::CellHint(std::string_view hint) { mModel->Hint(hint); }

std::string Listbox::Cell(std::int64_t row, std::int64_t column) const {
    const auto* cell = mModel->At(row, column);
    return cell ? cell->text : std::string();
}

void Listbox::Cell(std::int64_t row, std::int64_t column, std::string_view text) {
    if (auto* cell = mModel->At(row, column)) {
        cell->text = text;
        mModel->Changed(row, column);
    }
}

Variant Listbox::CellTag(std::int64_t row, std::int64_t column) const {
    const auto* cell = mModel->At(row, column);
    return cell ? cell->tag : Variant();
}

void Listbox::CellTag(std::int64_t row, std::int64_t column, Variant tag) {
    if (auto* cell = mModel->At(row, column)) cell->tag = std::move(tag);
}

void Listbox::CellType(std::int64_t row, std::int64_t column, int type) {
    if (auto* cell = mModel->At(row, column)) cell->type = type;
}

std::int64_t Listbox::ListIndex() const { return SelectedRow(View()); }

std::int64_t Listbox::ListCount() const { return mModel->RowCount(); }

void Listbox::AddRow(const std::vector<std::string>& texts) { mModel->Append(texts); }

void Listbox::ClearSelection() {
    mClearing = true;
    View().selectionModel()->clear();
    mClearing = false;
}

void Listbox::RemoveRow(std::int64_t row) {
    if (!mModel->At(row, 0)) return;
    const bool selected = ListIndex() >= 0;
    ClearSelection();
    mModel->Remove(row);
    if (selected) Raise(Change);
}

void Listbox::DeleteAllRows() {
    const bool selected = ListIndex() >= 0;
    ClearSelection();
    mModel->Clear();
    if (selected) Raise(Change);
}

void Listbox::RaiseOpen() { Raise(Open); }
