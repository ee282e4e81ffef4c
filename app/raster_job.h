// PAPPL raster callbacks: each card of a job goes through one run of rastertobrellian.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <pappl/pappl.h>

bool RasterJob_StartJob(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t* device);
bool RasterJob_StartPage(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t* device, unsigned page);
bool RasterJob_WriteLine(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t* device, unsigned y,
                      const unsigned char* line);
bool RasterJob_EndPage(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t* device, unsigned page);
bool RasterJob_EndJob(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t* device);
