// The list of the editor screens.
#include "editors/editors.h"

#include "editors/advancetable.h"
#include "editors/airfueltable.h"
#include "editors/binjgraph.h"
#include "editors/editcycle.h"
#include "editors/gpotable.h"
#include "editors/graph3d.h"
#include "editors/vetable.h"

void RegisterEditors() {
  for (Editor* editor : {&BinjGraph(), &FrmVETable(), &EgoAfTbl(), &IgnAdvTbl(), &GpoCtl()})
    RegisterEditor(*editor);
  RegisterGraph3D();
}
