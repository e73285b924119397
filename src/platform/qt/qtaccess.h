// What screen readers are told of the widgets that the toolkit does not know.
#pragma once

void TellScreenReaders();
