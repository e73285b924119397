// What a calibration's path says of its name: the short name that goes into the image, and the ends
// of a path that the dialogs test. Characters are counted, not bytes.
#pragma once

#include <string>
#include <string_view>

// The last characters of a text, or all of it when it has fewer.
std::string LastCharacters(std::string_view text, long count);

// BinShortName of a file that is opened or saved: what follows the length of the current folder and
// one separator, at most 20 characters. A file elsewhere keeps a part of its folder; that is known
// and stays. Only the open makes room for the root, whose separator is part of the folder.
std::string ShortNameOnOpen(std::string_view path, std::string_view currentFolder);
std::string ShortNameOnSave(std::string_view path, std::string_view currentFolder);

// Stores the ANSI codes of BinShortName up to its first "." in CalValues[477..490]; what a longer
// name left behind it stays.
void StoreNameInCalibration();
