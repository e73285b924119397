// Opening and saving calibrations. Each routine has its own error trap: failures are told in a box,
// a cancelled dialog ends in silence, and nothing is thrown. All of them show boxes and so run the
// event queue.
#pragma once

#include "platform/dialogs.h"

// The file dialog of the main frame. UseDialogName makes OpenCalibration take the name in it.
extern FileDialog CommonDialog;

// Asks for a BIN file, reads it, repairs it and makes it the open calibration. The callers test
// CurrentBinPath: a failure and a declined conversion leave it empty; when the user leaves the
// dialogs it stays. What was loaded stays in CalValues unless a file has been read whole.
void OpenCalibration();

// Loads the file named in CurrentBinPath without dialog and whatever its length; a bare name is
// found beside the program too. A failure leaves CurrentBinPath empty and CalValues as they were.
void LoadBaseCalibration();

// Bytes of BinImage: the first one, and how many.
struct ImageBytes {
  int first = 0;
  int count = 0;
};
// The bytes that wait in BinImage to be sent to the control unit. Set by the link; none until then.
extern ImageBytes (*BytesWaiting)();

// Writes CalValues to TargetBinPath and, encoded, to the S19 file beside it. Each of the files is
// replaced as a whole or stays as it was; bytes of an existing file behind the 2048 of a BIN stay.
// CalChanged is cleared when all has been written. Result: whether it has. BinImage is encoded
// anew, but for the bytes that wait to be sent.
bool savedata();

// Save As: asks for a name until it is not the base file's, makes it the open file's and saves.
void SaveCalibrationAs();
