// The controls by their names, in the order of creation.
#include "flash/EspWin.h"

// clang-format off
PopupMenu& EspWin::tooltypePM() const { return ControlNamed<PopupMenu>("tooltypePM"); }
Label& EspWin::Label1() const { return ControlNamed<Label>("Label1"); }
PushButton& EspWin::StartPB() const { return ControlNamed<PushButton>("StartPB"); }
TextArea& EspWin::rEF() const { return ControlNamed<TextArea>("rEF"); }
TextArea& EspWin::UploadEF() const { return ControlNamed<TextArea>("UploadEF"); }
Label& EspWin::Label2() const { return ControlNamed<Label>("Label2"); }
Label& EspWin::Label3() const { return ControlNamed<Label>("Label3"); }
PushButton& EspWin::SelectPB() const { return ControlNamed<PushButton>("SelectPB"); }
Shell& EspWin::esptool() const { return ControlNamed<Shell>("esptool"); }
TextArea& EspWin::EspToolEF() const { return ControlNamed<TextArea>("EspToolEF"); }
Label& EspWin::Label5() const { return ControlNamed<Label>("Label5"); }
PopupMenu& EspWin::BaudPM() const { return ControlNamed<PopupMenu>("BaudPM"); }
PopupMenu& EspWin::BitsPM() const { return ControlNamed<PopupMenu>("BitsPM"); }
PushButton& EspWin::ConnectPB() const { return ControlNamed<PushButton>("ConnectPB"); }
CheckBox& EspWin::CtsCB() const { return ControlNamed<CheckBox>("CtsCB"); }
CheckBox& EspWin::DtrCB() const { return ControlNamed<CheckBox>("DtrCB"); }
PopupMenu& EspWin::ParityPM() const { return ControlNamed<PopupMenu>("ParityPM"); }
PopupMenu& EspWin::PortPM() const { return ControlNamed<PopupMenu>("PortPM"); }
PushButton& EspWin::ScanBtn() const { return ControlNamed<PushButton>("ScanBtn"); }
PopupMenu& EspWin::StopPM() const { return ControlNamed<PopupMenu>("StopPM"); }
CheckBox& EspWin::XonCB() const { return ControlNamed<CheckBox>("XonCB"); }
Label& EspWin::Label7() const { return ControlNamed<Label>("Label7"); }
TextField& EspWin::ResetEF() const { return ControlNamed<TextField>("ResetEF"); }
Serial& EspWin::MySerial() const { return ControlNamed<Serial>("MySerial"); }
Label& EspWin::Label9() const { return ControlNamed<Label>("Label9"); }
TextArea& EspWin::InstallEF() const { return ControlNamed<TextArea>("InstallEF"); }
PushButton& EspWin::SelectESPPB() const { return ControlNamed<PushButton>("SelectESPPB"); }
Label& EspWin::Label8() const { return ControlNamed<Label>("Label8"); }
Listbox& EspWin::ulb() const { return ControlNamed<Listbox>("ulb"); }
PushButton& EspWin::DeletePB() const { return ControlNamed<PushButton>("DeletePB"); }
TextField& EspWin::AddressEF() const { return ControlNamed<TextField>("AddressEF"); }
// clang-format on
