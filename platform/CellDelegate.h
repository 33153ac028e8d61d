// Paints the cells of a list and makes the editor of one. For the platform's own files.
#pragma once

#include <QStyledItemDelegate>
#include <functional>

#include "platform/Graphics.h"

class ListView;

class CellDelegate : public QStyledItemDelegate {
  public:
    explicit CellDelegate(ListView& view);

    // Before a cell is painted. True means that nothing more is painted.
    std::function<bool(Graphics&, int row, int column)> PaintBackground;

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
    class Editor;

    void Commit(QWidget* editor);

    ListView& mView;
};
