#pragma once

#include "support/coresupport/CoreSupportExport.h"

/// Names of folders in the game data directory, one path component each.
/// @{

/// Holds the download folders, one for each type of resource.
extern CORESUPPORT_EXPORT const char *const g_respath_base_name;

extern CORESUPPORT_EXPORT const char *const g_respath_game_name;
extern CORESUPPORT_EXPORT const char *const g_respath_java_name;
extern CORESUPPORT_EXPORT const char *const g_respath_mods_name;
extern CORESUPPORT_EXPORT const char *const g_respath_textures_name;
extern CORESUPPORT_EXPORT const char *const g_respath_saves_name;
extern CORESUPPORT_EXPORT const char *const g_respath_skins_name;
extern CORESUPPORT_EXPORT const char *const g_respath_cloaks_name;
extern CORESUPPORT_EXPORT const char *const g_respath_other_name;
extern CORESUPPORT_EXPORT const char *const g_respath_shaders_name;

/// Folders of what is deployed for all instances together.
extern CORESUPPORT_EXPORT const char *const g_deploypath_game_name;
extern CORESUPPORT_EXPORT const char *const g_deploypath_java_name;
extern CORESUPPORT_EXPORT const char *const g_deploypath_skin_name;

/// @}
