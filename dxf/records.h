// Table records and block markers: layers, text styles, block records, and
// the BLOCK and ENDBLK entities around a block's contents.
#pragma once

#include <cstdint>

#include "dxf/shape.h"
#include "dxf/text_codec.h"
#include "memhost/document.h"

namespace kestrana::dxf {

void ReadLayerRecord(const Shape& shape, memhost::MemLayer& layer,
                     const TextCodec& codec);
void ReadStyleRecord(const Shape& shape, memhost::MemTextStyle& style,
                     const TextCodec& codec);

// Fingerprints of the state each record writes, extended data aside
// (MemObject::XDataVersion() tells whether that changed).
uint64_t LayerHash(const memhost::MemLayer& layer);
uint64_t StyleHash(const memhost::MemTextStyle& style);
// Covers the block record and the BLOCK entity.
uint64_t BlockHash(const memhost::MemBlock& block);

// The groups each record writes (WritePlan::groups and xdata).
void LayerPlan(memhost::MemLayer& layer, const Shape* original,
               WritePlan& plan);
void StylePlan(memhost::MemTextStyle& style, WritePlan& plan);
void BlockRecordPlan(memhost::MemBlock& block, WritePlan& plan);
void BlockBeginPlan(memhost::MemBlock& block, bool paper_space,
                    WritePlan& plan);
void BlockEndPlan(bool paper_space, WritePlan& plan);

}  // namespace kestrana::dxf
