#include "platform/Listbox.h"

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QTableView>
#include <algorithm>
#include <utility>

#include "platform/Native.h"
#include "platform/QtText.h"
#include "platform/TextEdit.h"

// The rows, and the model through which the view sees them.
class Listbox::Rows : public QAbstractTableModel {
  public:
    struct CellData {
        std::string text;
        Variant tag;
        int type = 0;
    };

    Rows(Listbox& list, std::vector<std::string> headings)
        : mList(list), mHeadings(std::move(headings)) {}

    CellData* At(std::int64_t row, std::int64_t column) {
        if (row < 0 || row >= rowCount() || column < 0 || column >= columnCount()) return nullptr;
        return &mCells[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)];
    }

    void Changed(std::int64_t row, std::int64_t column) {
        const QModelIndex cell = index(static_cast<int>(row), static_cast<int>(column));
        emit dataChanged(cell, cell);
    }

    void Append(const std::vector<std::string>& texts) {
        std::vector<CellData> cells(mHeadings.size());
        for (std::size_t i = 0; i < std::min(texts.size(), cells.size()); ++i)
            cells[i].text = texts[i];
        beginInsertRows({}, rowCount(), rowCount());
        mCells.push_back(std::move(cells));
        endInsertRows();
    }

    void Remove(std::int64_t row) {
        beginRemoveRows({}, static_cast<int>(row), static_cast<int>(row));
        mCells.erase(mCells.begin() + row);
        endRemoveRows();
    }

    void Clear() {
        beginResetModel();
        mCells.clear();
        endResetModel();
    }

    int rowCount(const QModelIndex& = {}) const override { return static_cast<int>(mCells.size()); }
    int columnCount(const QModelIndex& = {}) const override {
        return static_cast<int>(mHeadings.size());
    }

    QVariant data(const QModelIndex& index, int role) const override {
        if (role != Qt::DisplayRole && role != Qt::EditRole) return {};
        return ToQt(
            mCells[static_cast<std::size_t>(index.row())][static_cast<std::size_t>(index.column())]
                .text);
    }

    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
        return ToQt(mHeadings[static_cast<std::size_t>(section)]);
    }

    Qt::ItemFlags flags(const QModelIndex& index) const override {
        const auto flags = QAbstractTableModel::flags(index);
        const bool editable =
            index.isValid() &&
            mCells[static_cast<std::size_t>(index.row())][static_cast<std::size_t>(index.column())]
                    .type == kEditable;
        return editable ? flags | Qt::ItemIsEditable : flags;
    }

    // A committed edit.
    bool setData(const QModelIndex& index, const QVariant& value, int) override {
        CellData& cell = *At(index.row(), index.column());
        std::string text = FromQt(value.toString());
        if (text == cell.text) return true;
        cell.text = std::move(text);
        Changed(index.row(), index.column());
        mList.Raise(mList.CellTextChange, index.row(), index.column());
        return true;
    }

  private:
    Listbox& mList;
    std::vector<std::string> mHeadings;
    std::vector<std::vector<CellData>> mCells;
};

class Listbox::View : public QTableView {
  public:
    View(Listbox& list, QWidget* parent) : QTableView(parent), mList(list) {
        setFocusPolicy(Qt::StrongFocus);
        setSelectionBehavior(SelectRows);
        setSelectionMode(SingleSelection);
        setEditTriggers(SelectedClicked | AnyKeyPressed);
        setTabKeyNavigation(false);
        setShowGrid(false);
        setWordWrap(false);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setCornerButtonEnabled(false);
        verticalHeader()->hide();
        verticalHeader()->setMinimumSectionSize(1);
        horizontalHeader()->setHighlightSections(false);
        horizontalHeader()->setSectionsClickable(false);
        horizontalHeader()->setMinimumSectionSize(1);
    }

    void SetColumns(int fixedWidth) {
        horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
        horizontalHeader()->setDefaultSectionSize(fixedWidth);
        horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    }

    int SelectedRow() const {
        const auto rows = selectionModel()->selectedRows();
        return rows.isEmpty() ? -1 : rows.front().row();
    }

    void FocusNeighbour(bool next) { focusNextPrevChild(next); }

  protected:
    void keyPressEvent(QKeyEvent* event) override {
        const int row = SelectedRow();
        const bool toEnd = event->key() == Qt::Key_Home || event->key() == Qt::Key_End;
        if (row < 0 || toEnd) {
            if (SelectByKey(event->key())) return;
        } else if (state() != EditingState && StartsEdit(*event)) {
            const QModelIndex cell = EditableCell(row);
            if (cell.isValid()) {
                setCurrentIndex(cell);
                const bool typed = event->text().size() > 0 && event->text()[0].isPrint();
                if (typed)
                    edit(cell, AnyKeyPressed, event);
                else
                    QTableView::edit(cell);
                return;
            }
        }
        QTableView::keyPressEvent(event);
    }

    void mouseDoubleClickEvent(QMouseEvent* event) override {
        QTableView::mouseDoubleClickEvent(event);
        if (event->button() == Qt::LeftButton) mList.Raise(mList.DoubleClick);
    }

    void changeEvent(QEvent* event) override {
        QTableView::changeEvent(event);
        if (event->type() == QEvent::FontChange)
            verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 4);
    }

  private:
    // The toolkit would move on from a current row that nobody sees, and Home and End would go to
    // the ends of the row.
    bool SelectByKey(int key) {
        const int rows = model()->rowCount();
        if (rows == 0) return false;
        if (key == Qt::Key_Down || key == Qt::Key_Home || key == Qt::Key_Space)
            selectRow(0);
        else if (key == Qt::Key_Up || key == Qt::Key_End)
            selectRow(rows - 1);
        else
            return false;
        return true;
    }

    static bool StartsEdit(const QKeyEvent& event) {
        if (event.modifiers().testAnyFlags(Qt::ControlModifier | Qt::AltModifier |
                                           Qt::MetaModifier))
            return false;
        const int key = event.key();
        return key == Qt::Key_F2 || key == Qt::Key_Return || key == Qt::Key_Enter ||
               (!event.text().isEmpty() && event.text()[0].isPrint());
    }

    QModelIndex EditableCell(int row) const {
        for (int column = 0; column < model()->columnCount(); ++column) {
            const QModelIndex cell = model()->index(row, column);
            if (cell.flags().testFlag(Qt::ItemIsEditable)) return cell;
        }
        return {};
    }

    Listbox& mList;
};

// Paints the cells and keeps the editor of one.
class Listbox::Painter : public QStyledItemDelegate {
  public:
    explicit Painter(Listbox& list) : mList(list) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const QRect& cell = option.rect;
        painter->save();
        painter->setClipRect(cell);
        painter->translate(cell.topLeft());
        Graphics graphics(painter, cell.width(), cell.height());
        const bool claimed =
            mList.Raise(mList.CellBackgroundPaint, graphics, index.row(), index.column());
        painter->restore();
        if (claimed) return;

        const bool selected = option.state.testFlag(QStyle::State_Selected);
        const auto group =
            option.state.testFlag(QStyle::State_Active) && mList.ListView().hasFocus()
                ? QPalette::Active
                : QPalette::Inactive;
        const QPalette& palette = option.palette;
        if (selected) painter->fillRect(cell, palette.color(group, QPalette::Highlight));
        painter->setFont(option.font);
        painter->setPen(
            palette.color(group, selected ? QPalette::HighlightedText : QPalette::Text));
        const QRect place = cell.adjusted(4, 0, -4, 0);
        painter->drawText(place, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                          option.fontMetrics.elidedText(index.data().toString().left(kShown),
                                                        Qt::ElideRight, place.width()));
        if (index.column() + 1 < index.model()->columnCount()) {
            painter->setPen(palette.color(QPalette::Mid));
            painter->drawLine(cell.topRight(), cell.bottomRight());
        }
    }

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&,
                          const QModelIndex& index) const override {
        auto* editor = new QLineEdit(parent);
        editor->setFrame(false);
        editor->setMaxLength(kLongestLine);
        editor->setFont(mList.ListView().font());
        editor->setAccessibleName(
            index.model()->headerData(index.column(), Qt::Horizontal).toString());
        return editor;
    }

  protected:
    bool eventFilter(QObject* object, QEvent* event) override {
        auto* editor = qobject_cast<QLineEdit*>(object);
        if (editor && event->type() == QEvent::KeyPress) {
            const int key = static_cast<QKeyEvent*>(event)->key();
            if (key == Qt::Key_Tab || key == Qt::Key_Backtab) {
                emit commitData(editor);
                emit closeEditor(editor, NoHint);
                mList.ListView().FocusNeighbour(key == Qt::Key_Tab);
                return true;
            }
        }
        // The menu bar gives the focus back, and its items act on the editor meanwhile.
        if (editor && event->type() == QEvent::FocusOut &&
            static_cast<QFocusEvent*>(event)->reason() == Qt::MenuBarFocusReason)
            return false;
        return QStyledItemDelegate::eventFilter(object, event);
    }

  private:
    static constexpr int kShown = 2000;  // more of a text than a cell is ever wide

    Listbox& mList;
};

Listbox::Listbox(Window& owner, std::string name, const std::vector<std::string>& headings,
                 int fixedWidth)
    : RectControl(std::move(name), new View(*this, ContentOf(owner))),
      mRows(std::make_unique<Rows>(*this, headings)),
      mPainter(std::make_unique<Painter>(*this)) {
    View& view = ListView();
    view.setModel(mRows.get());
    view.setItemDelegate(mPainter.get());
    view.SetColumns(fixedWidth);
    QObject::connect(view.selectionModel(), &QItemSelectionModel::selectionChanged, &view, [this] {
        if (!mClearing) Raise(Change);
    });
}

// The view outlives the model, so it has to let go of it first. An open edit commits at that.
Listbox::~Listbox() { ListView().setModel(nullptr); }

Listbox::View& Listbox::ListView() const { return static_cast<View&>(*Native()); }

std::string Listbox::Cell(std::int64_t row, std::int64_t column) const {
    const auto* cell = mRows->At(row, column);
    return cell ? cell->text : std::string();
}

void Listbox::Cell(std::int64_t row, std::int64_t column, std::string_view text) {
    if (auto* cell = mRows->At(row, column)) {
        cell->text = text;
        mRows->Changed(row, column);
    }
}

Variant Listbox::CellTag(std::int64_t row, std::int64_t column) const {
    const auto* cell = mRows->At(row, column);
    return cell ? cell->tag : Variant();
}

void Listbox::CellTag(std::int64_t row, std::int64_t column, Variant tag) {
    if (auto* cell = mRows->At(row, column)) cell->tag = std::move(tag);
}

void Listbox::CellType(std::int64_t row, std::int64_t column, int type) {
    if (auto* cell = mRows->At(row, column)) cell->type = type;
}

std::int64_t Listbox::ListIndex() const { return ListView().SelectedRow(); }

std::int64_t Listbox::ListCount() const { return mRows->rowCount(); }

void Listbox::AddRow(const std::vector<std::string>& texts) { mRows->Append(texts); }

void Listbox::ClearSelection() {
    mClearing = true;
    ListView().selectionModel()->clear();
    mClearing = false;
}

void Listbox::RemoveRow(std::int64_t row) {
    if (!mRows->At(row, 0)) return;
    const bool selected = ListIndex() >= 0;
    ClearSelection();
    mRows->Remove(row);
    if (selected) Raise(Change);
}

void Listbox::DeleteAllRows() {
    const bool selected = ListIndex() >= 0;
    ClearSelection();
    mRows->Clear();
    if (selected) Raise(Change);
}

void Listbox::RaiseOpen() { Raise(Open); }
