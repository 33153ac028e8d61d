#include "platform/qt/OpenEdit.h"

#include <QApplication>
#include <QEvent>
#include <QInputMethod>
#include <QMenuBar>
#include <QPointer>
#include <utility>

namespace {

struct {
    QPointer<QWidget> editor;
    std::function<void()> commit;
} open;

void CommitEditor() {
    if (open.editor && open.commit) std::exchange(open.commit, {})();
}

}  // namespace

void SetOpenEditor(QWidget* editor, std::function<void()> commit) {
    CommitEditor();
    open = {editor, std::move(commit)};
}

void CommitOpenEdit() {
    QGuiApplication::inputMethod()->commit();
    CommitEditor();
}

void WatchForFocus(const QEvent& event) {
    if (event.type() != QEvent::FocusIn) return;
    const QWidget* focus = QApplication::focusWidget();
    if (focus != nullptr && focus != open.editor && qobject_cast<const QMenuBar*>(focus) == nullptr)
        CommitEditor();
}
