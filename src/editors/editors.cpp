// The list of the editor screens.
#include "editors/editors.h"

#include "editors/binjgraph.h"
#include "editors/editcycle.h"

void RegisterEditors() {
  for (Editor* editor : {&BinjGraph()}) RegisterEditor(*editor);
}
