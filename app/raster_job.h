// PAPPL raster callbacks: each card of a job goes through one run of rastertobrellian.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <pappl/pappl.h>

bool Raster_StartJob(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t* device);
bool Raster_StartPage(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t* device, unsigned page);
bool Raster_WriteLine(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t* device, unsigned y,
                      const unsigned char* line);
bool Raster_EndPage(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t* device, unsigned page);
bool Raster_EndJob(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t* device);
