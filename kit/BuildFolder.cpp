#include "kit/BuildFolder.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <iterator>

#include "kit/ImageList.h"
#include "kit/Refusal.h"

namespace fs = std::filesystem;

namespace {

constexpr char kIdeData[] = "idedata.json";  // by PlatformIO, for other programs
constexpr char kList[] = "flash_args";
// Where PlatformIO tells no other place for the application.
constexpr char kApplicationOffset[] = "0x10000";

// A text, or a number as text.
std::string NeedText(const QJsonValue& value, const char* name, const fs::path& file) {
    std::string text = value.toVariant().toString().toStdString();
    if (text.empty()) throw Refusal("no " + std::string(name) + " in " + file.string());
    return text;
}

std::vector<Image> ReadIdeData(const fs::path& file) {
    const std::string bytes = ReadBuildFile(file, 16 << 20);
    QJsonParseError error;
    const auto document = QJsonDocument::fromJson(QByteArray::fromStdString(bytes), &error);
    if (!document.isObject())
        throw Refusal("no JSON object in " + file.string() + ": " +
                      error.errorString().toStdString());
    const QJsonObject extra = document["extra"].toObject();
    if (!extra["flash_images"].isArray())
        throw Refusal("no list extra.flash_images in " + file.string());

    std::vector<Image> images;
    for (const QJsonValue image : extra["flash_images"].toArray())
        images.push_back({file.parent_path() / NeedText(image["path"], "path of an image", file),
                          NeedText(image["offset"], "offset of an image", file)});
    fs::path application = file.parent_path() / NeedText(document["prog_path"], "prog_path", file);
    if (application.extension() != ".elf")
        throw Refusal("prog_path doesn't end in .elf in " + file.string());
    const QJsonValue offset = extra["application_offset"];
    images.push_back(
        {application.replace_extension(".bin"),
         offset.isUndefined() ? kApplicationOffset : NeedText(offset, "application_offset", file)});
    for (const Image& image : images) ReadAddress(image.address);
    return images;
}

// The file that names the images of the build in this very folder; empty where there is none.
// PlatformIO can leave a list too, whose names aren't those of its files.
fs::path FindBuild(const fs::path& folder) {
    for (const char* name : {kIdeData, kList})
        if (fs::is_regular_file(folder / name)) return folder / name;
    return {};
}

fs::path FindProjectBuild(const fs::path& project) {
    std::vector<fs::path> found;
    const fs::path list = project / "build/flash_args";
    if (fs::is_regular_file(list)) found.push_back(list);
    const fs::path environments = project / ".pio/build";
    if (fs::is_directory(environments))
        for (const fs::path& folder : fs::directory_iterator(environments))
            if (fs::is_regular_file(folder / kIdeData)) found.push_back(folder / kIdeData);
    if (found.empty())
        throw Refusal("no build in " + project.string() +
                      ": no flash_args, build/flash_args, idedata.json or"
                      " .pio/build/ENV/idedata.json (PlatformIO writes it by: pio run -t idedata)");
    if (found.size() > 1) {
        std::sort(found.begin(), found.end());
        std::string names;
        for (const fs::path& build : found) names += ' ' + build.parent_path().string();
        throw Refusal("more than one build, name one of them:" + names);
    }
    return found[0];
}

}  // namespace

std::vector<Image> ReadBuild(const fs::path& build) {
    try {
        fs::path file = build;
        if (fs::is_directory(build)) file = FindBuild(build);
        if (file.empty()) file = FindProjectBuild(build);
        return file.filename() == kIdeData ? ReadIdeData(file) : ReadImageList(file);
    } catch (const fs::filesystem_error& error) {
        throw Refusal(error.code().message() + ": " + error.path1().string());
    }
}
