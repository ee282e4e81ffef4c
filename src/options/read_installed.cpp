// Option reader: ribbon, installed accessories, printer model, card thickness.
// Copyright 2026 The rastertobrellian authors.
#include "driver/printing_task.h"
#include "log/log.h"
#include "options/option_source.h"
#include "options/read_context.h"
#include "status/models.h"
#include "status/tables.h"

// 'Opt_ReadInstalled()' - Ribbon type, accessories and model from the PPD.
// icEncoderContactless writes the icEncoder field after icEncoder itself,
// so its result is the one that stays.  The model decides flipTurn; a model
// number missing from the model table prints as the default model.
void Opt_ReadInstalled(TOptionContext* ctx) {
  TPrintingTask* task = ctx->task;
  task->ribbonType = Opt_ReadKeyword(ctx, "ribbonType");
  task->flipTurn = Opt_ReadKeyword(ctx, "flipTurn");
  task->laminator = Opt_ReadKeyword(ctx, "laminator");
  task->magEncoder = Opt_ReadKeyword(ctx, "magEncoder");
  task->icEncoder = Opt_ReadKeyword(ctx, "icEncoder");
  task->icEncoder = Opt_ReadKeyword(ctx, "icEncoderContactless");

  int32_t number = ctx->ppd->ModelNumber();
  const TModelInfo* model = number > 0 ? Model_Find(static_cast<uint32_t>(number)) : nullptr;
  if (!model) model = &Model_Default();
  task->printerModel = static_cast<int32_t>(model->id);
  Log_Write(LOG_LOG, "  printerModel::[%d]", number);
  task->flipTurn = model->twoSided ? 1 : 0;
  task->modelName = Status_ModelName(model->id);
}

// 'Opt_ReadCardThickness()' - "Thin" 1, "Standard" 2; anything else takes
// the settings value: -1 gives 0, 0 gives 2, any other number 1.
void Opt_ReadCardThickness(TOptionContext* ctx) {
  int32_t fromSettings = ctx->settings.cardThickness == -1 ? 0
                         : ctx->settings.cardThickness == 0 ? 2
                                                            : 1;
  ctx->task->cardThickness = Opt_ReadKeyword(ctx, "cardThickness", fromSettings);
}
