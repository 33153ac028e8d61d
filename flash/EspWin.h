// The program's one window, with all its logic. There is no model apart from it: the fields below
// and the controls are the whole state. Each subsystem's folder has the operations that it owns.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/controls/CheckBox.h"
#include "platform/controls/Label.h"
#include "platform/controls/PopupMenu.h"
#include "platform/controls/PushButton.h"
#include "platform/controls/TextArea.h"
#include "platform/controls/TextField.h"
#include "platform/files/FolderItem.h"
#include "platform/list/Graphics.h"
#include "platform/list/Listbox.h"
#include "platform/run/Shell.h"
#include "platform/serial/Serial.h"
#include "platform/window/Window.h"

class EspWin : public Window {
  public:
    EspWin();

    // Returns the one live window. The first call creates it and shows it.
    static std::shared_ptr<EspWin> Instance();

    void Layout();
    void CreateControls();

    // The controls by their names, in the order of creation.
    PopupMenu& tooltypePM() const { return ControlNamed<PopupMenu>("tooltypePM"); }
    Label& Label1() const { return ControlNamed<Label>("Label1"); }
    PushButton& StartPB() const { return ControlNamed<PushButton>("StartPB"); }
    TextArea& rEF() const { return ControlNamed<TextArea>("rEF"); }
    TextArea& UploadEF() const { return ControlNamed<TextArea>("UploadEF"); }
    Label& Label2() const { return ControlNamed<Label>("Label2"); }
    Label& Label3() const { return ControlNamed<Label>("Label3"); }
    PushButton& SelectPB() const { return ControlNamed<PushButton>("SelectPB"); }
    // Runs the command.
    Shell& esptool() const { return ControlNamed<Shell>("esptool"); }
    TextArea& EspToolEF() const { return ControlNamed<TextArea>("EspToolEF"); }
    Label& Label5() const { return ControlNamed<Label>("Label5"); }
    PopupMenu& BaudPM() const { return ControlNamed<PopupMenu>("BaudPM"); }
    PopupMenu& BitsPM() const { return ControlNamed<PopupMenu>("BitsPM"); }
    PushButton& ConnectPB() const { return ControlNamed<PushButton>("ConnectPB"); }
    CheckBox& CtsCB() const { return ControlNamed<CheckBox>("CtsCB"); }
    CheckBox& DtrCB() const { return ControlNamed<CheckBox>("DtrCB"); }
    PopupMenu& ParityPM() const { return ControlNamed<PopupMenu>("ParityPM"); }
    PopupMenu& PortPM() const { return ControlNamed<PopupMenu>("PortPM"); }
    PushButton& ScanBtn() const { return ControlNamed<PushButton>("ScanBtn"); }
    PopupMenu& StopPM() const { return ControlNamed<PopupMenu>("StopPM"); }
    CheckBox& XonCB() const { return ControlNamed<CheckBox>("XonCB"); }
    Label& Label7() const { return ControlNamed<Label>("Label7"); }
    TextField& ResetEF() const { return ControlNamed<TextField>("ResetEF"); }
    Serial& MySerial() const { return ControlNamed<Serial>("MySerial"); }
    Label& Label9() const { return ControlNamed<Label>("Label9"); }
    TextArea& InstallEF() const { return ControlNamed<TextArea>("InstallEF"); }
    PushButton& SelectESPPB() const { return ControlNamed<PushButton>("SelectESPPB"); }
    Label& Label8() const { return ControlNamed<Label>("Label8"); }
    Listbox& ulb() const { return ControlNamed<Listbox>("ulb"); }
    PushButton& DeletePB() const { return ControlNamed<PushButton>("DeletePB"); }
    TextField& AddressEF() const { return ControlNamed<TextField>("AddressEF"); }

    // flash/: the tool, the command, the run, the search at the start.
    void tooltypePM_Change(PopupMenu& sender);
    void tooltypePM_Open(PopupMenu& sender);
    void StartPB_Action(PushButton& sender);
    void esptool_Completed(Shell& sender);
    void esptool_DataAvailable(Shell& sender);
    void EspToolEF_TextChange(TextArea& sender);
    void SelectESPPB_Action(PushButton& sender);
    void Event_Open();
    void Event_Close();
    void MakeCommand();
    void ResetEF_TextChange(TextField& sender);

    // upload/: the images and where they come from.
    void UploadEF_TextChange(TextArea& sender);
    void SelectPB_Action(PushButton& sender);
    bool ulb_CellBackgroundPaint(Listbox& sender, Graphics& g, std::int64_t row,
                                 std::int64_t column);
    void ulb_DoubleClick(Listbox& sender);
    void ulb_Change(Listbox& sender);
    void ulb_Open(Listbox& sender);
    void ulb_CellTextChange(Listbox& sender, std::int64_t row, std::int64_t column);
    void ulb_DeleteKey(Listbox& sender);
    void DeletePB_Action(PushButton& sender);
    void AddressEF_TextChange(TextField& sender);
    void SelectUploadFile();
    // Found by the search at the start, or chosen by the user. Next to a setting file that was
    // found, images that a stranger may have put there are passed over.
    enum class Origin { Found, Chosen };
    void SetInstallSetting(const FolderItemRef& file, Origin origin = Origin::Found);
    void SetUploadFileToList(const FolderItemRef& file, const std::string& address);

    // serial/: the ports and the connection.
    void BaudPM_Open(PopupMenu& sender);
    void BaudPM_Change(PopupMenu& sender);
    void ConnectPB_Action(PushButton& sender);
    void PortPM_Change(PopupMenu& sender);
    void PortPM_Open(PopupMenu& sender);
    void ScanBtn_Action(PushButton& sender);
    void MySerial_DataAvailable(Serial& sender);
    void DoConnect(std::string port);
    bool RbPortOpen(const std::string& port);
    void RbPortClose();
    void RbPortOpenPre();
    void MemoPortInfo(const std::string& port);
    void MakeSerialPortPopupMenu();

    // The connection was open when the last run began.
    bool termConnected = false;
    // The tool of the type "esptool.py"; mEspToolCk is that of "esptool-ck". Nothing sets them yet.
    std::string mEspToolPy;
    // The tool of the selected type. Nothing reads it yet: the command takes mEspToolApp.
    std::string mEspTool;
    bool mConnected = false;
    // The ports connected last, most recent first.
    std::array<std::string, 6> mPortName;
    // The text of BaudPM at the last connection.
    std::string mLastBaudRate = "115200";
    // Nothing uses bits, parity and stop yet: the port is always opened with 8N1. DTR and RTS are
    // the states that the two lines get when the port is opened.
    std::int64_t mSerialBits = 0;
    bool mSerialDTR = false;
    std::int64_t mSerialParity = 0;
    bool mSerialRTS = false;
    std::int64_t mSerialStop = 0;
    // The row of tooltypePM: 0 is "esptool.py", 1 is "esptool-ck".
    std::int64_t mEspToolUse = 1;
    FolderItemRef mEspToolCk;
    // The tool that the command names; nullptr while there is none.
    FolderItemRef mEspToolApp;

  private:
    static constexpr std::string_view kStopKeys = "Cmd+.";  // stop a run

    void ShowBusy(bool busy);

    // Makes a handler of an event out of a method of this window.
    template <class Result, class... Arguments>
    std::function<Result(Arguments...)> On(Result (EspWin::*method)(Arguments...)) {
        return [this, method](Arguments... arguments) { return (this->*method)(arguments...); };
    }
};
