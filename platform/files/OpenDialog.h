#pragma once

#include <string>
#include <string_view>

#include "platform/files/FolderItem.h"

// The dialog for choosing one existing file: the system's own where Qt supports it. Use an object
// for one ShowModal.
class OpenDialog {
  public:
    // nullptr means a folder of the system's choice. So does a folder that is gone.
    FolderItemRef InitialDirectory() const;
    void InitialDirectory(FolderItemRef folder) { mInitialDirectory = std::move(folder); }
    void Title(std::string_view title) { mTitle = title; }
    // Asks the user for the file. Shown in the dialog, or beside the title where the system's
    // dialog has no place for it.
    void PromptText(std::string_view text) { mPromptText = text; }
    // Names of file types, separated by ";". The dialog offers files of the registered ones, or
    // every file if none is registered.
    void Filter(std::string_view filter) { mFilter = filter; }

    // Blocks until the user answers. nullptr on cancel. A link that was chosen keeps its own path.
    FolderItemRef ShowModal();

  private:
    FolderItemRef mInitialDirectory;
    std::string mTitle, mPromptText, mFilter;
};
