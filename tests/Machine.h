// A machine around the bridge and the kit: a home folder, a search path of its own, and a stand-in
// for the official tool.
#pragma once

#include <QStandardPaths>

#include "Testing.h"

// Records its call, tells its process, and ends with 7.
inline constexpr char kOfficial[] = R"(
[ "$2" != esptool ] || shift 2
[ "$1" != version ] || { printf 'esptool v%s\n' $version; echo $version; exit; }
printf '%s\0' "$@" >~/call.new; mv ~/call.new ~/call; echo $$; exit 7)";

inline QByteArray Bytes(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline QStringList Content(const QString& folder) {
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

// A home folder and a search path of its own: "usr/bin", "later", and what the scripts need.
class Machine : public PreparedFolder {
  public:
    Machine() {
        for (const char* name : {"system", "home"}) QDir().mkpath(Path(name));
        for (const char* name : {"cmp", "cp", "iconv", "ln", "ls", "mkdir", "mv", "readlink", "rm",
                                 "rmdir", "sed", "tail", "tr", "wc"})
            QFile::link(QStandardPaths::findExecutable(name), Path("system/") + name);
        qputenv("HOME", Path("home").toUtf8());
        qputenv("PATH", Path("usr/bin:" + Path("later:" + Path("system"))).toUtf8());
    }
    ~Machine() {
        qputenv("HOME", mHome);
        qputenv("PATH", mPath);
    }

    void Script(const QString& name, const QByteArray& text) const {
        Write(name, "#!/bin/sh -e\n" + text, 0755);
    }

    void Official(const QString& name, const QByteArray& version) const {
        Script(name, "version=" + version + kOfficial);
    }

    // The arguments that the official tool got.
    QByteArrayList Call() const { return Bytes(Path("home/call")).split('\0'); }

  private:
    const QByteArray mHome = qgetenv("HOME"), mPath = qgetenv("PATH");
};
