// The box that every error trap of the core ends in.
#include "core/messages.h"

#include "platform/dialogs.h"

void ShowFailure(const Failure& failure, std::string_view more) {
  if (failure.number == FailureCancel) return;
  MsgBox(FailureText(failure).append(more), Buttons::Ok, "Error", BoxIcon::Critical);
}
