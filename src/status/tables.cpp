// Start-up table builder: the printer status vocabulary and model names.
// Copyright 2026 The rastertobrellian authors.
#include "status/tables.h"

#include "imaging/panel.h"
#include "options/mag.h"
#include "status/models.h"

std::map<uint16_t, std::string> g_senseMessages;
std::map<uint8_t, std::string> g_printerStatusMessages;
std::map<uint8_t, std::string> g_laminatorStatusMessages;
std::map<uint8_t, std::string> g_laminatorErrorMessages;
std::map<uint8_t, std::string> g_ribbonTypeNames;
std::map<uint32_t, std::string> g_modelNames;

namespace {

template <typename TKey>
struct TMessage {
  TKey key;
  const char* text;
};

// Sense key x 256 + sense code.
const TMessage<uint16_t> kSenseMessages[] = {
    {0x0000, "Ready"},
    {0x02D0, "Card hopper empty"},
    {0x02D1, "Printer door open"},
    {0x02D3, "Transporting card"},
    {0x02D4, "Printing card"},
    {0x02D5, "Retransferring film"},
    {0x02DA, "Printer is preheating"},
    {0x02DB, "Printer is initializing"},
    {0x02DC, "Printer is testing or cleaning"},
    {0x02DD, "Printer in settings mode"},
    {0x02DE, "Printer not in download mode"},
    {0x02FD, "Printer is sleeping"},
    {0x02FE, "Password certification is not completed"},
    {0x0390, "Jam in card hopper"},
    {0x0391, "Jam in flip/turn"},
    {0x0392, "Jam in mag encoder"},
    {0x0393, "Jam in transfer area"},
    {0x0394, "Jam in discharge area"},
    {0x0395, "Jam in retransfer area"},
    {0x03A1, "Retransfer film marking not detected"},
    {0x03A8, "Mag write error in self test"},
    {0x03AD, "Mag write error"},
    {0x03AE, "Mag read error"},
    {0x03B0, "Invalid ribbon type"},
    {0x03B1, "Ribbon film marking not detected"},
    {0x0444, "Printing timeout detected"},
    {0x04AB, "Mechanical error in the mag encoder unit"},
    {0x04AC, "Hardware error in the mag encoder unit"},
    {0x04BF, "Error updating laminator firmware"},
    {0x04C1, "Heating roller operation error"},
    {0x04C2, "Retransfer or bend remedy overheat"},
    {0x04C3, "Power interrupted"},
    {0x04D8, "Hardware circuit error"},
    {0x04F0, "Retransfer roller overheat"},
    {0x04F1, "Retransfer roller malfunction"},
    {0x04F2, "Retransfer roller thermistor malfunction"},
    {0x04F3, "Bend remedy roller overheat"},
    {0x04F4, "Bend remedy roller malfunction"},
    {0x04F5, "Bend remedy roller thermistor malfunction"},
    {0x04F6, "Printer temperature too low"},
    {0x04F8, "Thermal head temperature too hot"},
    {0x051A, "Command content invalid"},
    {0x0520, "Invalid command code"},
    {0x0521, "Security key is already set"},
    {0x0522, "Invalid security key"},
    {0x0523, "Security key is not set"},
    {0x0524, "Invalid command parameter"},
    {0x0526, "Invalid page parameter"},
    {0x0527, "Invalid color code"},
    {0x052A, "Command sequence error"},
    {0x052B, "Mag data error"},
    {0x052C, "IC encoder not installed"},
    {0x052D, "Mag encoder not installed"},
    {0x052E, "Option not installed"},
    {0x05FB, "Invalid download data"},
    {0x0628, "Printer was initialized by pressing RESET button"},
    {0x0629, "Printer was reset by turning on printer"},
    {0x42A2, "Out of retransfer film"},
    {0x42B2, "Out of ribbon film"},
};

const TMessage<uint8_t> kPrinterStatusMessages[] = {
    {0x00, "Ready"},         {0x01, "Initializing"},
    {0x03, "Offline"},       {0x07, "Preheating"},
    {0x33, "Loading card"},  {0x34, "Moving card"},
    {0x35, "Mag encoding card"},
    {0x37, "Card at contact IC encoder"},
    {0x38, "Card at contactless IC encoder"},
    {0x39, "Retransferring"},
    {0x3D, "Printing retransfer film"},
    {0x3E, "Sleeping"},      {0x3F, "Preheating"},
    {0xFF, "Printer error"},
};

// The 0xFF entry is never returned by Status_LaminatorText, which takes
// status 0xFF to the error table; it stays for completeness.
const TMessage<uint8_t> kLaminatorStatusMessages[] = {
    {0x00, "Ready"},
    {0x01, "Power save"},
    {0x02, "Standby at low temperature"},
    {0x0F, "Download mode"},
    {0x10, "Initializing"},
    {0x11, "Preheating"},
    {0x12, "Laminating"},
    {0x13, "Cleaning"},
    {0x14, "Performing sensor test"},
    {0x15, "Performing motor test"},
    {0xFE, "Laminator not connected"},
    {0xFF, "Laminator error"},
};

const TMessage<uint8_t> kLaminatorErrorMessages[] = {
    {0x50, "Card jam near card inlet"},
    {0x51, "Card jam inside laminator"},
    {0x52, "Card jam near card outlet"},
    {0x53, "Upper film cassette is empty"},
    {0x54, "Lower film cassette is empty"},
    {0x55, "Upper film cassette cannot be detected"},
    {0x56, "Lower film cassette cannot be detected"},
    {0x57, "Upper film mark cannot be detected"},
    {0x58, "Lower film mark cannot be detected"},
    {0x59, "Front door is open"},
    {0x5A, "There is no cassette"},
    {0x60, "Thermostat wire is broken"},
    {0x61, "Upper heat roller overheating"},
    {0x62, "Lower heat roller overheating"},
    {0x63, "Upper area is overheating"},
    {0x64, "Lower area is overheating"},
    {0x65, "Upper heater error"},
    {0x66, "Lower heater error"},
    {0x67, "Thermistor wire broken in upper heat roller"},
    {0x68, "Thermistor wire broken in lower heat roller"},
    {0x6B, "Upper heat roller CAM error"},
    {0x6C, "Lower heat roller CAM error"},
    {0x6D, "Not up to temperature"},
    {0x6E, "Upper film supply side encoder error"},
    {0x6F, "Lower film supply side encoder error"},
    {0x70, "Upper film take up side encoder error"},
    {0x71, "Lower film take up side encoder error"},
    {0x7D, "Other error"},
};

const TMessage<uint8_t> kRibbonTypeNames[] = {
    {0x00, "YMCK"},         {0x01, "RESERVED"},     {0x02, "YMCK-PO"},
    {0x03, "K"},            {0x04, "YMCKK"},        {0x05, "YMCK-UV"},
    {0xFF, "UNKNOWN (FF)"}, {0xFE, "UNKNOWN (FE)"}, {0xFD, "UNKNOWN (FD)"},
    {0xFC, "UNKNOWN (FC)"},
};

// 'Status_Fill()' - Clear a map, then fill it from a table in table order.
template <typename TKey, size_t N>
void Status_Fill(std::map<TKey, std::string>* map, const TMessage<TKey> (&table)[N]) {
  map->clear();
  for (const TMessage<TKey>& m : table) (*map)[m.key] = m.text;
}

}  // namespace

void Status_BuildTables() {
  Status_Fill(&g_senseMessages, kSenseMessages);
  Status_Fill(&g_printerStatusMessages, kPrinterStatusMessages);
  Status_Fill(&g_laminatorStatusMessages, kLaminatorStatusMessages);
  Status_Fill(&g_laminatorErrorMessages, kLaminatorErrorMessages);
  Status_Fill(&g_ribbonTypeNames, kRibbonTypeNames);
  g_modelNames.clear();
  int32_t count = 0;
  const TModelInfo* models = Model_All(&count);
  for (int32_t i = 0; i < count; ++i) g_modelNames[models[i].id] = models[i].name;
  Panel_BuildTables();
  Mag_BuildCharsets();
}

const char* Status_ModelName(uint32_t model) {
  auto it = g_modelNames.find(model);
  return it == g_modelNames.end() ? "" : it->second.c_str();
}
