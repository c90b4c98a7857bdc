// A host built against the installed library: fills a reference system from
// the shipped catalogs, prints its datum and ellipsoid, converts a point from
// Geographic WGS 84 to UTM and prints the result's line in the user-interface
// language (MAPWRIGHT_UI_LANG), turned into UTF-8 for the terminal. Then a
// scripted user chooses Gauss-Kruger on Pulkovo 1942 in the projection
// dialog, and the host prints the system the dialog saved in the registry.
#include <mapwright/mapwright.h>

#include <cstdio>
#include <string>

namespace {

void Pick(CDialog& dialog, int id, const char* text) {
    CComboBox* list = dynamic_cast<CComboBox*>(dialog.GetDlgItem(id));
    CString item;
    for (int i = 0; list && i < list->GetCount(); ++i) {
        list->GetLBText(i, item);
        if (item == text) {
            list->Pick(i);
            return;
        }
    }
}

// Gauss-Kruger (its name in the user's language) on Pulkovo 1942, central
// meridian 39 E, false easting 7500 km, then OK.
void ChooseGaussKruger(CDialog& dialog, void*) {
    Pick(dialog, 800, GetResourceString(834));
    Pick(dialog, 806, "Krassovsky 1940");
    Pick(dialog, 807, "Pulkovo 1942");
    if (CEdit* lon = dynamic_cast<CEdit*>(dialog.GetDlgItem(801))) lon->TypeText("039\xB0 00' 00.00'' E");
    if (CEdit* fe = dynamic_cast<CEdit*>(dialog.GetDlgItem(803))) fe->TypeText("7500000");
    if (CButton* ok = dynamic_cast<CButton*>(dialog.GetDlgItem(IDOK))) ok->Click();
}

std::string Saved(const char* name) {
    HKEY key = nullptr;
    const CString path = AppRegKey() + "\\GeoData";
    if (RegOpenKeyExA(HKEY_CURRENT_USER, path, 0, KEY_READ, &key) != ERROR_SUCCESS) return "?";
    char data[256];
    DWORD size = sizeof data;
    const LONG rc = RegQueryValueExA(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(data), &size);
    RegCloseKey(key);
    return rc == ERROR_SUCCESS ? std::string(data, size) : "?";
}

int ChooseInDialog() {
    CGeoReferenceData chosen;
    MwSetDialogUser(&ChooseGaussKruger, nullptr);
    const int rc = ModalPrChooseDlg(nullptr, &chosen, nullptr);
    MwSetDialogUser(nullptr, nullptr);
    CString name, datum;
    chosen.GetEnProjectionName(name);
    chosen.GetDatumName(datum);
    std::printf("dialog %d: %s on %s\n", rc, name.GetString(), datum.GetString());
    std::printf("saved:");
    for (const char* value : {"ProjectionIndex", "DatumIndex", "scale", "c_lon", "lat_origin", "fe", "fn"})
        std::printf(" %s=%s", value, Saved(value).c_str());
    std::printf("\n");
    return rc == IDOK ? 0 : 1;
}

}  // namespace

int main() {
    CGeoReferenceData system;
    system.SetDefault();
    CString datum;
    system.GetDatumName(datum);
    std::printf("datum %d: %s\n", system.GetDatum(), datum.GetString());
    CGeoTransform transform;
    if (transform.SetGeoParam(Geographic, UTM, 3, 3) != 1) return 1;
    GeoCoordTag point{55.7558, 37.6173, 150.0, 0};
    transform.SetGeoCoord(&point);
    if (transform.GeoConvert() != 1) return 1;
    char line[256];
    transform.GetCoordStr(line, sizeof line, 0);
    std::printf("line: %s\n", AnsiToUtf8(line).c_str());
    transform.FreeGeoParam();
    if (datum != "WGS 84") return 1;
    return ChooseInDialog();
}
