// The two modal dialogs a host opens to let its user choose a reference
// system. Both return IDOK after an accepted OK (the record then holds the
// choice and the registry, under AppRegKey() + "\GeoData", has it too),
// IDCANCEL after Cancel, and -1 when the dialog could not be created: no
// window back end and no scripted user, a missing template, or a null
// pointer where one is required.
#ifndef MAPWRIGHT_DIALOGS_H
#define MAPWRIGHT_DIALOGS_H

#include <mapwright/GeoRecords.h>
#include <mapwright/afxstr.h>
#include <mapwright/wintypes.h>

class CWnd;
class CGeoReferenceData;

// Projection, parameters, ellipsoid and datum. A tag naming UTM opens the
// dialog on UTM with the tag's zone and hemisphere; `tag` may be null.
MW_API int ModalPrChooseDlg(CWnd* parent, CGeoReferenceData* record, ProjectionParamTag* tag);

// The same choice with the geoid: a constant height (`*height`, metres, and
// an empty `*file`) or a geoid file (`*file`). `*file` follows every file the
// user picks at once, also when the dialog is then cancelled.
MW_API int ModalPrAndGeoidDlg(CWnd* parent, CGeoReferenceData* record, double* height, CString* file);

#endif
