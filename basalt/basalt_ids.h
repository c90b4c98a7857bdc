// Ids of Basalt's own string table (basalt/Basalt.rc). The module shows
// Basalt's message when the settings cannot be saved, so it names the id
// from here too.
#ifndef MAPWRIGHT_BASALT_IDS_H
#define MAPWRIGHT_BASALT_IDS_H

#define IDS_CANCEL 123
#define IDS_SETTINGS_NOT_SAVED 211

#endif
