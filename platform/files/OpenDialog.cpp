#include "platform/files/OpenDialog.h"

#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QHeaderView>
#include <QLabel>
#include <QLayout>
#include <QLocale>
#include <QTreeView>

#include "platform/files/FileType.h"
#include "platform/qt/QtText.h"

namespace {

// "*.[bB][iI][nN]": some systems' dialogs match patterns with regard to case.
QString AnyCasePattern(const std::string& extension) {
    QString pattern = QStringLiteral("*.");
    for (const QChar c : ToQt(extension))
        pattern += c.toLower() == c.toUpper() ? QString(c)
                                              : u'[' + QString(c.toLower()) + c.toUpper() + u']';
    return pattern;
}

QString NameFilter(const std::string& filter) {
    QStringList patterns;
    for (const std::string& extension : FileType::ExtensionsIn(filter))
        patterns += AnyCasePattern(extension);
    if (patterns.isEmpty()) return QStringLiteral("All files (*)");
    return ToQt(filter).replace(u';', QStringLiteral(", ")) + QStringLiteral(" (") +
           patterns.join(u' ') + u')';
}

}  // namespace

FolderItemRef OpenDialog::InitialDirectory() const {
    return mInitialDirectory && mInitialDirectory->Exists() ? mInitialDirectory : nullptr;
}

FolderItemRef OpenDialog::ShowModal() {
    QFileDialog dialog(QApplication::activeWindow());
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setOption(QFileDialog::DontResolveSymlinks);
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    dialog.setNameFilter(NameFilter(mFilter));
    if (const auto folder = InitialDirectory()) dialog.setDirectory(ToQt(folder->NativePath()));
    // Only Qt's own dialog has a layout. The system's dialog has no place for the prompt.
    if (QLayout* layout = dialog.layout()) {
        dialog.setLayoutDirection(QLocale().textDirection());
        dialog.setWindowTitle(ToQt(mTitle));
        auto* prompt = new QLabel(ToQt(mPromptText), &dialog);
        prompt->setObjectName("PromptText");
        prompt->setMargin(9);
        layout->setMenuBar(prompt);  // at the top of the dialog
        if (auto* details = dialog.findChild<QTreeView*>("treeView"))
            details->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    } else {
        dialog.setWindowTitle(ToQt(mTitle + " - " + mPromptText));
    }
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return nullptr;
    return std::make_shared<const FolderItem>(
        QFile::encodeName(dialog.selectedFiles().constFirst()).toStdString());
}
