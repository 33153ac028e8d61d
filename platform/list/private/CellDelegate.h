// Paints the cells of a list and makes the editor of one.
#pragma once

#include <QStyledItemDelegate>
#include <functional>

class Graphics;
class ListView;

class CellDelegate : public QStyledItemDelegate {
  public:
    // Runs before a cell is painted. True means that nothing more is painted.
    using BackgroundPainter = std::function<bool(Graphics&, int row, int column)>;

    // The view owns the delegate.
    CellDelegate(ListView& view, BackgroundPainter paintBackground);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* widget, const QModelIndex& index) const override;
    void setModelData(QWidget* widget, QAbstractItemModel* model,
                      const QModelIndex& index) const override;
    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;

  protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    void Commit(QWidget* editor);

    ListView& mView;
    const BackgroundPainter mPaintBackground;
};
