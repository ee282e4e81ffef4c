// The filter's options string of a job, from its card attributes, the printer defaults and accessories.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <pappl/pappl.h>

#include <map>
#include <string>

#include "app/accessories.h"
#include "app/models.h"

// The card attribute values in force for a job, by IPP name ("true" /
// "false" for booleans).
typedef std::map<std::string, std::string> TCardValues;

// 'JobOpt_Collect()' - Each offered card attribute: the job's value when
// it is one the printer offers, else the printer's default, else the
// table's default.  Values refused are named in *refused (for the log).
TCardValues JobOpt_Collect(const TAppModel& model, const TAccessories& acc, int numVendor, cups_option_t* vendor,
                           ipp_t* driverAttrs, std::string* refused);

// 'JobOpt_FilterOptions()' - The options string rastertobrellian reads:
// the installed options, then every card option as its PPD keyword and
// choice; custom areas and texts as "Custom." values, quoted.
std::string JobOpt_FilterOptions(const TAccessories& acc, const TCardValues& values);

// 'JobOpt_PagesPerSide()' - How many raster pages the filter reads for one
// side (0 front, 1 back): the colour (or black) page, plus a black page
// for "colour + resin black" on the whole page, plus a UV page and an
// overlay page when they come from the page.
int JobOpt_PagesPerSide(const TCardValues& values, int side);

// 'JobOpt_ParseAreas()' - A custom-areas text "resin=A;A|no-resin=A|
// overlay-off=A|overlay-keep=A" into the filter's keywords of one side
// (e.g. frontResinInclude1) and their area strings.  False with *error
// for a text that is not of this form (more than 5 areas in a group, an
// unknown group name).
bool JobOpt_ParseAreas(const std::string& text, int side, std::map<std::string, std::string>* out,
                       std::string* error);

// 'JobOpt_CheckAreas()' - Every custom-areas text of values can be used
// by the filter; false with *error naming the attribute and the reason
// (JobOpt_FilterOptions() would leave such a text out).
bool JobOpt_CheckAreas(const TCardValues& values, std::string* error);
