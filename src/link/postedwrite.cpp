// State of the posted memory write.
#include "link/postedwrite.h"

std::int32_t OnflyCalIndex = 0;
double OnflyValue = 0;
std::int32_t OnflyImageIndex = 0;
float OnflyByteCount = 0;
void (*RefreshActiveEditor)() = [] {};

void PostWrite(int calIndex, double value, int imageIndex, int byteCount) {
  OnflyCalIndex = calIndex;
  OnflyValue = value;
  OnflyImageIndex = imageIndex;
  OnflyByteCount = static_cast<float>(byteCount);
}

void ResetPostedWrite() { PostWrite(0, 0, 0, 0); }
