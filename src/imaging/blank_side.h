// The WARNING line for a card side that prints nothing.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <cstdint>

class TPrintingTask;

// 'Blank_NotePanel()' - Note on the task whether a colour or black panel
// about to be written holds a printed dot (colour: a byte other than 255;
// black: a byte other than 0).  UV and overlay panels are finishing, not
// the card's design, and are not looked at.  data may be null.
void Blank_NotePanel(TPrintingTask* task, int32_t panelType, const uint8_t* data);

// 'Blank_EndSide()' - Before the open side is closed: one WARNING line when
// none of its colour and black panels held a printed dot (a document that
// lies off the page, or a white page), then forget the note for the next
// side.  Writes nothing on the job command stream.
void Blank_EndSide(TPrintingTask* task);
