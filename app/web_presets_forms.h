// The forms and lists of the "Card presets" page.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <pappl/pappl.h>

#include <string>

#include "options/settings.h"

// 'Web_PresetForms()' - The page body for one printer: the settings form
// (areas as text, every other value a choice), the installed UV images
// with previews and the installed colour tables, and the two upload
// forms naming their limits.  path is the page's path, previewPath the
// path of its UV preview pictures, token the session's form token
// (Web_SessionToken()).  No server path is shown.
void Web_PresetForms(pappl_client_t* client, const char* path, const char* previewPath, const TBrellianSettings& s,
                   const std::string& token);

// 'Web_PresetPreviewImage()' - An <img> of the installed UV file name.
void Web_PresetPreviewImage(pappl_client_t* client, const char* previewPath, const std::string& name);
