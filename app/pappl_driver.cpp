// PAPPL drivers of the three models: what each printer offers, given its accessories.
// Copyright 2026 The rastertobrellian authors.
#include "app/pappl_driver.h"

#include <cstring>
#include <string>
#include <vector>

#include "app/ipp_conformance.h"
#include "app/raster_job.h"
#include "app/raw_job.h"
#include "app/vendor_table.h"

namespace {

// The one media source and media type of every model.
constexpr const char* kMediaSource = "main";
constexpr const char* kMediaType = "plastic";

// 'Driver_HasBack()' - Two-sided printing is possible.
bool Driver_HasBack(const TAppModel& model, const TAccessories& acc) { return model.twoSided && acc.flipTurn; }

// 'Driver_DefaultMedia()' - The first size of g_appMedia, with the margin
// of APP_MEDIA_MARGIN, from the one source, of the one type.
pappl_media_col_t Driver_DefaultMedia() {
  pappl_media_col_t media = {};
  pwg_media_t* pwg = pwgMediaForPWG(g_appMedia[0]);
  if (pwg) {
    snprintf(media.size_name, sizeof(media.size_name), "%s", pwg->pwg);
    media.size_width = pwg->width;
    media.size_length = pwg->length;
  }
  media.left_margin = media.right_margin = APP_MEDIA_MARGIN;
  media.bottom_margin = media.top_margin = APP_MEDIA_MARGIN;
  snprintf(media.source, sizeof(media.source), "%s", kMediaSource);
  snprintf(media.type, sizeof(media.type), "%s", kMediaType);
  return media;
}

// 'Driver_FillData()' - The fixed part of the driver data.
void Driver_FillData(const TAppModel& model, const TAccessories& acc, pappl_pr_driver_data_t* data) {
  data->rstartjob_cb = RasterJob_StartJob;
  data->rstartpage_cb = RasterJob_StartPage;
  data->rwriteline_cb = RasterJob_WriteLine;
  data->rendpage_cb = RasterJob_EndPage;
  data->rendjob_cb = RasterJob_EndJob;
  // No delete callback: PAPPL calls it while it holds the system lock and
  // removes every resource whose data is the printer (the "Card presets"
  // and "Device settings" pages) by itself; removing them here took that
  // lock a second time and left every thread of the server waiting.
  data->delete_cb = nullptr;
  data->printfile_cb = Raw_PrintFile;
  data->format = "application/vnd.brellian-job";
  snprintf(data->make_and_model, sizeof(data->make_and_model), "%s", App_Description(model));
  data->ppm = 1;
  data->ppm_color = 1;
  data->kind = PAPPL_KIND_PHOTO;
  data->color_supported = PAPPL_COLOR_MODE_AUTO | PAPPL_COLOR_MODE_COLOR;
  data->color_default = PAPPL_COLOR_MODE_COLOR;
  data->content_default = PAPPL_CONTENT_AUTO;
  data->quality_default = IPP_QUALITY_NORMAL;
  data->scaling_default = PAPPL_SCALING_AUTO;
  data->raster_types = PAPPL_PWG_RASTER_TYPE_SRGB_8;
  data->force_raster_type = PAPPL_PWG_RASTER_TYPE_SRGB_8;
  bool back = Driver_HasBack(model, acc);
  data->duplex = back ? PAPPL_DUPLEX_NORMAL : PAPPL_DUPLEX_NONE;
  data->sides_supported = PAPPL_SIDES_ONE_SIDED;
  if (back) data->sides_supported |= PAPPL_SIDES_TWO_SIDED_LONG_EDGE | PAPPL_SIDES_TWO_SIDED_SHORT_EDGE;
  data->sides_default = PAPPL_SIDES_ONE_SIDED;
  data->num_resolution = 1;
  data->x_resolution[0] = data->y_resolution[0] = model.dpi;
  data->x_default = data->y_default = model.dpi;
  // Every size twice: borderless, and with a margin of APP_MEDIA_MARGIN.
  // A CUPS driverless queue names the borderless ones "....Borderless" and
  // can take its default size only from one with a margin; with borderless
  // sizes alone its default matched none and PDF went out on Letter.  The
  // card is printed edge to edge either way: the raster always covers the
  // whole card.
  data->borderless = true;
  data->left_right = data->bottom_top = APP_MEDIA_MARGIN;
  data->num_media = APP_MEDIA_COUNT;
  for (int i = 0; i < APP_MEDIA_COUNT; ++i) data->media[i] = g_appMedia[i];
  data->num_source = 1;
  data->source[0] = kMediaSource;
  data->num_type = 1;
  data->type[0] = kMediaType;
  data->media_default = data->media_ready[0] = Driver_DefaultMedia();
  // Portrait: a picture is printed as sent, not turned (IPP Everywhere
  // wants a default from portrait to reverse-portrait; "none", PAPPL's turn
  // to fit, stays offered to jobs).
  data->orient_default = IPP_ORIENT_PORTRAIT;
  data->identify_cb = Conf_Identify;
  data->identify_supported = PAPPL_IDENTIFY_ACTIONS_DISPLAY;
  data->identify_default = PAPPL_IDENTIFY_ACTIONS_DISPLAY;
}

// 'Driver_OldDefault()' - The default an administrator set, if any.
ipp_attribute_t* Driver_OldDefault(ipp_t* old, const std::string& name) {
  return old ? ippFindAttribute(old, (name + "-default").c_str(), IPP_TAG_ZERO) : nullptr;
}

// 'Driver_AddVendor()' - Card attributes offered with these accessories,
// into data->vendor[] and *attrs, keeping valid defaults from old.
void Driver_AddVendor(const TAppModel& model, const TAccessories& acc, ipp_t* old, pappl_pr_driver_data_t* data,
                      ipp_t* attrs) {
  data->num_vendor = 0;
  for (const TVendorAttr& a : Vendor_Table()) {
    // A carried option has no slot: its carrier stands for it.
    if (!a.carrier.empty() || !Driver_Offered(model, acc, a.name.c_str(), "")) continue;
    if (data->num_vendor >= PAPPL_MAX_VENDOR) continue;
    data->vendor[data->num_vendor++] = a.name.c_str();
    ipp_attribute_t* prev = Driver_OldDefault(old, a.name);
    std::string def = a.name + "-default", sup = a.name + "-supported";
    if (a.kind == VENDOR_KEYWORD) {
      std::vector<const char*> values;
      for (const TVendorChoice& c : a.choices)
        if (Driver_Offered(model, acc, a.name.c_str(), c.keyword.c_str())) values.push_back(c.keyword.c_str());
      ippAddStrings(attrs, IPP_TAG_PRINTER, IPP_TAG_KEYWORD, sup.c_str(), static_cast<int>(values.size()), nullptr,
                    values.data());
      const char* keep = prev ? ippGetString(prev, 0, nullptr) : nullptr;
      bool valid = keep && Driver_Offered(model, acc, a.name.c_str(), keep) && Vendor_FindChoice(a, keep);
      ippAddString(attrs, IPP_TAG_PRINTER, IPP_TAG_KEYWORD, def.c_str(), nullptr,
                   valid ? keep : a.defaultValue.c_str());
    } else if (a.kind == VENDOR_BOOLEAN) {
      ippAddBoolean(attrs, IPP_TAG_PRINTER, sup.c_str(), 1);
      bool value = prev && ippGetValueTag(prev) == IPP_TAG_BOOLEAN ? ippGetBoolean(prev, 0) : a.defaultValue == "true";
      ippAddBoolean(attrs, IPP_TAG_PRINTER, def.c_str(), value ? 1 : 0);
    } else {
      const char* keep = prev ? ippGetString(prev, 0, nullptr) : nullptr;
      ippAddString(attrs, IPP_TAG_PRINTER, IPP_TAG_TEXT, def.c_str(), nullptr, keep ? keep : a.defaultValue.c_str());
    }
  }
}

}  // namespace

// 'Driver_Offered()' - The accessory rules.
bool Driver_Offered(const TAppModel& model, const TAccessories& acc, const char* attrName, const char* keyword) {
  const TVendorAttr* a = Vendor_Find(attrName);
  if (!a) return false;
  if (a->needs == NEEDS_BACK_SIDE && !Driver_HasBack(model, acc)) return false;
  if (a->needs == NEEDS_LAMINATOR && !acc.laminator) return false;
  if (a->needs == NEEDS_MAG_ENCODER && !acc.magEncoder) return false;
  if (!keyword || !*keyword) return true;
  const TVendorChoice* choice = Vendor_FindChoice(*a, keyword);
  return !choice || Vendor_RibbonAllows(choice->ribbon, acc.ribbonType);
}

// 'Driver_Callback()' - A new printer: model defaults, no saved accessories yet.
bool Driver_Callback(pappl_system_t*, const char* driver_name, const char* device_uri, const char*,
                     pappl_pr_driver_data_t* data, ipp_t** driver_attrs, void*) {
  const TAppModel* model = App_FindModel(driver_name);
  if (!model) return false;
  TAccessories acc = Acc_Defaults(*model, device_uri);
  Driver_FillData(*model, acc, data);
  if (!*driver_attrs) *driver_attrs = ippNew();
  Driver_AddVendor(*model, acc, nullptr, data, *driver_attrs);
  return true;
}

// 'Driver_AutoAdd()' - Match a device ID.
const char* Driver_AutoAdd(const char*, const char*, const char* device_id, void*) {
  const TAppModel* model = App_ModelFromDeviceId(device_id);
  return model ? model->driverName : nullptr;
}

// 'Driver_Apply()' - Rebuild from the accessories.
bool Driver_Apply(pappl_printer_t* printer, const TAppModel& model, const TAccessories& acc) {
  pappl_pr_driver_data_t data;
  papplPrinterGetDriverData(printer, &data);
  Driver_FillData(model, acc, &data);
  ipp_t* old = papplPrinterGetDriverAttributes(printer);
  ipp_t* attrs = ippNew();
  Driver_AddVendor(model, acc, old, &data, attrs);
  Conf_AddPrinterAttrs(printer, data, attrs);
  bool ok = papplPrinterSetDriverData(printer, &data, attrs);
  Conf_SetSupplies(printer, acc);
  ippDelete(attrs);
  ippDelete(old);
  return ok;
}
