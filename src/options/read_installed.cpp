// Option reader: ribbon, installed accessories, printer model, card thickness.
// Copyright 2026 The rastertobrellian authors.
#include "driver/printing_task.h"
#include "log/log.h"
#include "options/option_source.h"
#include "options/read_context.h"
#include "status/tables.h"

namespace {


// Model id and whether it carries a flip/turn unit.
struct TModelFlip {
  int32_t model;
  int32_t flipTurn;
};
const TModelFlip kModels[] = {{1030, 0}, {1035, 1}, {1060, 1}};

}  // namespace

// 'Opt_ReadInstalled()' - Ribbon type, accessories and model from the PPD.
// icEncoderContactless writes the icEncoder field after icEncoder itself,
// so its result is the one that stays.  The model decides flipTurn.
void Opt_ReadInstalled(TOptionContext* ctx) {
  TPrintingTask* task = ctx->task;
  task->ribbonType = Opt_ReadKeyword(ctx, "ribbonType");
  task->flipTurn = Opt_ReadKeyword(ctx, "flipTurn");
  task->laminator = Opt_ReadKeyword(ctx, "laminator");
  task->magEncoder = Opt_ReadKeyword(ctx, "magEncoder");
  task->icEncoder = Opt_ReadKeyword(ctx, "icEncoder");
  task->icEncoder = Opt_ReadKeyword(ctx, "icEncoderContactless");

  int32_t number = ctx->ppd->ModelNumber();
  const TModelFlip* model = &kModels[2];
  for (const TModelFlip& m : kModels)
    if (m.model == number) model = &m;
  task->printerModel = model->model;
  Log_Write(LOG_LOG, "  printerModel::[%d]", number);
  task->flipTurn = model->flipTurn;
  task->modelName = Status_ModelName(static_cast<uint32_t>(model->model));
}

// 'Opt_ReadCardThickness()' - "Thin" 1, "Standard" 2; anything else takes
// the settings value: -1 gives 0, 0 gives 2, any other number 1.
void Opt_ReadCardThickness(TOptionContext* ctx) {
  int32_t fromSettings = ctx->settings.cardThickness == -1 ? 0
                         : ctx->settings.cardThickness == 0 ? 2
                                                            : 1;
  ctx->task->cardThickness = Opt_ReadKeyword(ctx, "cardThickness", fromSettings);
}
