#include "platform/qt/OpenEdit.h"

#include <QApplication>
#include <QEvent>
#include <QMenuBar>
#include <QPointer>
#include <utility>

namespace {

struct {
    QPointer<QWidget> editor;
    std::function<void()> commit;
} open;

struct {
    QPointer<QWidget> widget;
    std::function<void()> end;
} composing;

void CommitEditor() {
    if (open.editor && open.commit) std::exchange(open.commit, {})();
}

}  // namespace

void SetOpenEditor(QWidget* editor, std::function<void()> commit) {
    CommitEditor();
    open = {editor, std::move(commit)};
}

void SetComposing(QWidget* widget, std::function<void()> end) {
    composing = {widget, std::move(end)};
}

void EndComposing() {
    const auto end = composing.end;  // a copy, since it may lead to SetComposing
    if (composing.widget) end();
}

void CommitOpenEdit() {
    EndComposing();
    CommitEditor();
}

void WatchForFocus(const QEvent& event) {
    if (event.type() != QEvent::FocusIn) return;
    const QWidget* focus = QApplication::focusWidget();
    if (focus != nullptr && focus != open.editor && qobject_cast<const QMenuBar*>(focus) == nullptr)
        CommitEditor();
}
