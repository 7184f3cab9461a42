#include "support/coresupport/DirectoryNames.h"

const char *const g_respath_base_name = "resources";

const char *const g_respath_game_name = "clients";
const char *const g_respath_java_name = "java";
const char *const g_respath_mods_name = "mods";
const char *const g_respath_textures_name = "resourcepacks";
const char *const g_respath_saves_name = "saves";
const char *const g_respath_skins_name = "skins";
const char *const g_respath_cloaks_name = "cloaks";
const char *const g_respath_other_name = "other";
const char *const g_respath_shaders_name = "shaderpacks";

const char *const g_deploypath_game_name = "game";
const char *const g_deploypath_java_name = "java";
const char *const g_deploypath_skin_name = "skins";
