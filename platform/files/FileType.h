#pragma once

#include <string>
#include <string_view>
#include <vector>

// A kind of file that the program knows by its extension. Only registered types count. Converting
// a type to a string registers it; setting a property unregisters it, so set all of them first.
class FileType {
  public:
    const std::string& Name() const { return mName; }
    void Name(std::string_view name) { Set(mName, name); }
    // One extension, without its dot.
    const std::string& Extensions() const { return mExtensions; }
    void Extensions(std::string_view extensions) { Set(mExtensions, extensions); }
    // The systems that we run on have no use for these properties.
    void MacType(std::string_view) { Unregister(); }
    void MacCreator(std::string_view) { Unregister(); }
    void MimeType(std::string_view) { Unregister(); }
    void Imported(bool) { Unregister(); }
    void ConformsTo(std::string_view) { Unregister(); }

    FileType();
    FileType(const FileType&) = delete;  // the registry holds addresses
    FileType& operator=(const FileType&) = delete;
    ~FileType() { Unregister(); }

    // Registers the type. The string is its Name.
    explicit operator std::string();

    // The Name of the first registered type with the extension of `fileName`, without regard to
    // case. Empty if there is none.
    static std::string NameFor(std::string_view fileName);

    // The extensions of the registered types that `filter` names, without dots.
    static std::vector<std::string> ExtensionsIn(std::string_view filter);

  private:
    void Set(std::string& property, std::string_view value);
    void Register();
    void Unregister();

    std::string mName, mExtensions;
};

// The filter of a dialog that offers both types. Registers them.
std::string operator+(FileType& a, FileType& b);
