// The memory write that an editor posts in an ONFLY session and that the live loop sends between
// two frames. An editor never speaks to the control unit itself.
#pragma once

#include <cstdint>

// Index into CalValues that takes the value when the control unit has accepted it. Starts as 0.
extern std::int32_t OnflyCalIndex;
// The value in engineering units. Starts as 0.
extern double OnflyValue;
// Index into BinImage of the (first) byte to send. Starts as 0.
extern std::int32_t OnflyImageIndex;
// 0 nothing posted, 1 or 2 bytes posted. Starts as 0.
extern float OnflyByteCount;
// Stores the value of image bytes 244 and 245 when the control unit has accepted it: the live loop
// leaves these to the screen that has posted them. Null stores nothing. Starts as null.
using StoreRoutine = void (*)(int calIndex, double value);
extern StoreRoutine OnflyStore;
// CalibrationLoads when it was posted: a write for a calibration that is no longer open is not
// stored, and not sent, or ended before its end record if that has not gone out. Starts as 0.
extern long OnflyLoads;

// Posts a write; one that was posted and not sent yet is lost. BinImage holds the bytes already,
// and keeps them over a save.
void PostWrite(int calIndex, double value, int imageIndex, int byteCount,
               StoreRoutine store = nullptr);

// Whether a write of this element of CalValues is posted or being sent: the element still holds the
// value before it. One that was posted for another calibration does not count.
bool WriteOnItsWay(int calIndex);
// The live loop keeps one while it sends a write that it has taken off.
class WriteBeingSent {
 public:
  WriteBeingSent(int calIndex, long loads);
  ~WriteBeingSent();
  WriteBeingSent(const WriteBeingSent&) = delete;
  WriteBeingSent& operator=(const WriteBeingSent&) = delete;
};

// Redraws the editor on top, if one is up: the live loop calls it after an accepted write. Set by
// the editors; does nothing until then.
extern void (*RefreshActiveEditor)();

// Start values of the posted write; RefreshActiveEditor stays.
void ResetPostedWrite();
