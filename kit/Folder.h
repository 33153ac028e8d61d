#pragma once

#include <filesystem>
#include <string>
#include <vector>

constexpr char kSettingName[] = "installsetting.csv";
// The first line of a setting file by the kit, by which it knows a folder that it may make anew.
constexpr char kSettingMark[] = "# Made by quillstone-kit, which may make this folder anew.";

// What a prepared folder holds.
struct Contents {
    std::string setting;  // the lines behind the mark
    std::vector<std::filesystem::path> images;
    std::filesystem::path tool;
    std::filesystem::path program;  // empty for none
    bool copies = false;            // of images and tool, else links to them
};

// Makes the folder. If it is there, it has to be empty, or to hold what an earlier call has made
// and nothing else; then its parts are exchanged, so that whoever stands in it still stands in it.
// What was there goes when the new parts stand. If a fault or a signal ends it before, everything
// is as it was. Throws a Refusal, Ended, or a filesystem_error.
void MakeFolder(std::filesystem::path folder, const Contents& contents);
