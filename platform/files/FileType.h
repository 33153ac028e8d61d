#pragma once

#include <string>
#include <string_view>
#include <vector>

// A kind of file that the program knows by extension. Converting it to a string registers it. Only
// registered types count. Setting a property unregisters it, so set all of them first.
class FileType {
  public:
    const std::string& Name() const { return mName; }
    void Name(std::string_view name) { Set(mName, name); }
    // One extension, without its dot.
    const std::string& Extensions() const { return mExtensions; }
    void Extensions(std::string_view extensions) { Set(mExtensions, extensions); }
    // Nothing else of a type matters on the systems that we run on.
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

    // Name of the first registered type with the extension of `fileName`, in any case; else empty.
    static std::string NameFor(std::string_view fileName);

    // The extensions of the registered types that `filter` names, without dots.
    static std::vector<std::string> ExtensionsIn(std::string_view filter);

  private:
    void Set(std::string& property, std::string_view value);
    void Register();
    void Unregister();

    std::string mName, mExtensions;
};

// The filter of a dialog that offers all the types of a sum. Registers them.
std::string operator+(FileType& a, FileType& b);
std::string operator+(const std::string& filter, FileType& type);
