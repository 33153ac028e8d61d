// The program's one window, with all its logic. There is no model apart from it: the fields below
// and the controls are the whole state. Each subsystem's folder has the operations that it owns.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "platform/CheckBox.h"
#include "platform/FolderItem.h"
#include "platform/Graphics.h"
#include "platform/Label.h"
#include "platform/Listbox.h"
#include "platform/PopupMenu.h"
#include "platform/PushButton.h"
#include "platform/Serial.h"
#include "platform/Shell.h"
#include "platform/TextEdit.h"
#include "platform/Window.h"

class EspWin : public Window {
  public:
    EspWin();

    // The one live window; creates and shows it at the first call.
    static std::shared_ptr<EspWin> Instance();

    void Layout();
    void CreateControls();

    // Each control, by its name, in the order of creation.
    PopupMenu& tooltypePM() const;
    Label& Label1() const;
    PushButton& StartPB() const;
    TextArea& rEF() const;
    TextArea& UploadEF() const;
    Label& Label2() const;
    Label& Label3() const;
    PushButton& SelectPB() const;
    Shell& esptool() const;
    TextArea& EspToolEF() const;
    Label& Label5() const;
    PopupMenu& BaudPM() const;
    PopupMenu& BitsPM() const;
    PushButton& ConnectPB() const;
    CheckBox& CtsCB() const;
    CheckBox& DtrCB() const;
    PopupMenu& ParityPM() const;
    PopupMenu& PortPM() const;
    PushButton& ScanBtn() const;
    PopupMenu& StopPM() const;
    CheckBox& XonCB() const;
    Label& Label7() const;
    TextField& ResetEF() const;
    Serial& MySerial() const;
    Label& Label9() const;
    TextArea& InstallEF() const;
    PushButton& SelectESPPB() const;
    Label& Label8() const;
    Listbox& ulb() const;
    PushButton& DeletePB() const;
    TextField& AddressEF() const;

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

    // upload/: the images and where they come from.
    void UploadEF_TextChange(TextArea& sender);
    void SelectPB_Action(PushButton& sender);
    bool ulb_CellBackgroundPaint(Listbox& sender, Graphics& g, std::int64_t row,
                                 std::int64_t column);
    void ulb_DoubleClick(Listbox& sender);
    void ulb_Change(Listbox& sender);
    void ulb_Open(Listbox& sender);
    void ulb_CellTextChange(Listbox& sender, std::int64_t row, std::int64_t column);
    void DeletePB_Action(PushButton& sender);
    void AddressEF_TextChange(TextField& sender);
    void SelectUploadFile();
    void SetInstallSetting(const FolderItemRef& file);
    void SetUploadFileToList(const FolderItemRef& file, const std::string& address);

    // serial/: the ports and the connection.
    void BaudPM_Open(PopupMenu& sender);
    void BaudPM_Change(PopupMenu& sender);
    void ConnectPB_Action(PushButton& sender);
    void PortPM_Change(PopupMenu& sender);
    void PortPM_Open(PopupMenu& sender);
    void ScanBtn_Action(PushButton& sender);
    void ResetEF_TextChange(TextField& sender);
    void MySerial_DataAvailable(Serial& sender);
    void DoConnect(std::string port);
    bool RbPortOpen(const std::string& port);
    void RbPortClose();
    void RbPortOpenPre();
    void MemoPortInfo(const std::string& port);
    void MakeSerialPortPopupMenu();

    // Whether the terminal was connected when the last run began.
    bool termConnected = false;
    // The three that no tool type fills yet: "esptool.py" has no options of its own.
    std::string mEspToolPy;
    std::string mEspTool;
    bool mConnected = false;
    // The ports connected last, most recent first.
    std::array<std::string, 6> mPortName;
    // BaudPM's text at the last connection.
    std::string mLastBaudRate = "115200";
    std::int64_t mSerialBits = 0;
    bool mSerialDTR = false;
    std::int64_t mSerialParity = 0;
    bool mSerialRTS = false;
    std::int64_t mSerialStop = 0;
    // tooltypePM's row: 0 "esptool.py", 1 "esptool-ck".
    std::int64_t mEspToolUse = 1;
    FolderItemRef mEspToolCk;
    // The tool that the command names; nil while there is none.
    FolderItemRef mEspToolApp;

  private:
    void CreateInOrder();
    void SetStartValues();
    void PlaceControls();
    void NameForScreenReaders();
    void AttachHandlers();
};
