#pragma once

#include <unzip.h>
#include <zip.h>

#include <memory>
#include <type_traits>

// minizip's handles, closed when their owner goes.
struct UnzCloser
{
    void operator()(unzFile file) const { unzClose(file); }
};
struct ZipCloser
{
    void operator()(zipFile file) const { zipClose(file, nullptr); }
};
using UnzHandle = std::unique_ptr<std::remove_pointer_t<unzFile>, UnzCloser>;
using ZipHandle = std::unique_ptr<std::remove_pointer_t<zipFile>, ZipCloser>;
