// State of the posted memory write.
#include "link/postedwrite.h"

#include <optional>

#include "core/binfile.h"
#include "core/calfix.h"

std::int32_t OnflyCalIndex = 0;
double OnflyValue = 0;
std::int32_t OnflyImageIndex = 0;
float OnflyByteCount = 0;
StoreRoutine OnflyStore = nullptr;
long OnflyLoads = 0;
void (*RefreshActiveEditor)() = [] {};

namespace {

struct SentWrite {
  int calIndex;
  long loads;
};
std::optional<SentWrite> sent;

ImageBytes PostedBytes() { return {OnflyImageIndex, static_cast<int>(OnflyByteCount)}; }

}  // namespace

void PostWrite(int calIndex, double value, int imageIndex, int byteCount, StoreRoutine store) {
  OnflyCalIndex = calIndex;
  OnflyValue = value;
  OnflyImageIndex = imageIndex;
  OnflyByteCount = static_cast<float>(byteCount);
  OnflyStore = store;
  OnflyLoads = CalibrationLoads;
  BytesWaiting = PostedBytes;
}

bool WriteOnItsWay(int calIndex) {
  if (OnflyByteCount > 0 && OnflyCalIndex == calIndex && OnflyLoads == CalibrationLoads)
    return true;
  return sent && sent->calIndex == calIndex && sent->loads == CalibrationLoads;
}

WriteBeingSent::WriteBeingSent(int calIndex, long loads) { sent = {calIndex, loads}; }

WriteBeingSent::~WriteBeingSent() { sent.reset(); }

void ResetPostedWrite() { PostWrite(0, 0, 0, 0); }
