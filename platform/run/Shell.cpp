#include "platform/run/Shell.h"

#include <utility>

#include "platform/run/private/Run.h"

Shell::Shell(Window&, std::string name) : Control(std::move(name)), mRun(std::make_unique<Run>()) {
    mRun->Output = [this](std::string_view bytes) {
        mOutput += mText.Add(bytes);
        if (!mOutput.empty()) Raise(DataAvailable);
    };
    mRun->Completed = [this] {
        mOutput += mText.End();
        Raise(Completed);
    };
}

Shell::~Shell() = default;

void Shell::Execute(std::string_view command) {
    if (!mRun->IsOver()) return;
    mOutput.clear();
    mText = {};
    mRun->Start(command);
}

std::string Shell::ReadAll() { return std::exchange(mOutput, {}); }

void Shell::Stop() { mRun->Stop(); }
