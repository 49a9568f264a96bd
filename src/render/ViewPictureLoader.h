#pragma once

// ViewPictureLoader: the resource cache's way of bringing a large picture to
// the screen without holding up the drawing thread (ResourceCache::
// RequestViewPictures and StepViewPicture).
//
// One worker thread decodes, never touching textures: first a reduced
// preview at least as large as the view (the JPEG decoder's own 1/2, 1/4 or
// 1/8 reduction, a fraction of a full decode; other formats are shrunk once
// decoded), then the whole picture into the path's entry, left "decoded"
// exactly as a decode-only LoadTextureFromFile leaves it. Then the pictures
// decoded ahead, likewise. The drawing thread uploads: the preview at once
// (it is small), the whole picture a few tiles per frame into a record of its
// own, whose content moves into the path's entry when the last tile is up. A single picture's decoded copy then goes: its
// tiles hold it, and keeping both would double what a shown photo costs.
//
// Threads: Request, Step, DropUpload and Clear run on the drawing thread;
// the worker decodes and stores decoded entries. Lock order: the cache's
// texture lock before m_mutex.

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include <karvelui/ResourceCache.h>
#include <karvelui/Thread.h>
#include "render/PictureDecoder.h"

namespace KarvelUI {

class ViewPictureLoader {
 public:
  explicit ViewPictureLoader(ResourceCache& cache);
  // Abandons the decode in progress and waits for the worker to end.
  ~ViewPictureLoader();
  ViewPictureLoader(const ViewPictureLoader&) = delete;
  ViewPictureLoader& operator=(const ViewPictureLoader&) = delete;

  void Request(const CString& path, const std::vector<CString>& ahead, CSize previewSize, IDirect3DDevice9* device,
               std::function<void()> notify);
  ViewPicture Step(const CString& path, IDirect3DDevice9* device, double budgetMs);
  // Forgets the tiles made so far for `path` (its entry is being released).
  void DropUpload(const CString& path);
  // Forgets every request and upload; a decode in progress is abandoned and
  // its result thrown away.
  void Clear();

  // The cache key of a path's preview; no file path looks like it.
  static CString PreviewKey(const CString& path);
  // Side of the tiles uploaded across frames: small enough that one tile's
  // copy and transfer fit in a frame, never above a quarter of the adapter's
  // largest texture.
  static constexpr int kTileSide = 1024;
  // Pictures up to this many pixels are uploaded in one go.
  static constexpr std::uint64_t kImmediatePixels = 1024 * 1024;

 private:
  enum class Work { Preview, Whole };
  struct Job {
    CString path;
    Work work;
  };
  // What the worker found out about a wanted path.
  struct Facts {
    bool headerRead = false;
    bool failed = false;
    PictureHeader header;
  };
  // The whole picture on its way to the GPU: a record drawn as it grows.
  struct Upload {
    std::unique_ptr<tagTextureItem> record;
    int nextTile = 0;
  };

  // --- worker ---
  void Run();
  bool TakeJob(Job& job);
  // True when something was stored (worth a repaint).
  bool Do(const Job& job);
  bool KnowHeader(const CString& path, PictureHeader& header);
  // How much a preview of the picture may be reduced and still cover the view.
  int PreviewReduction(const PictureHeader& header);
  bool DecodePreview(const CString& path);
  bool DecodeWhole(const CString& path);
  bool DecodeMultiPage(const CString& path);
  void MarkFailed(const CString& path);
  bool IsWanted(const CString& path);
  // Whether the entry of `key` is ready (readyOnly) or holds a decoded or
  // uploaded picture; read under the texture lock.
  bool HasPicture(const CString& key, bool readyOnly);
  // Stores a decoded record under `key` unless the key is no longer wanted
  // or its entry already holds a picture.
  bool StoreDecoded(const CString& path, const CString& key, std::unique_ptr<tagTextureItem> record);

  // --- drawing thread ---
  ViewPicture Full(const CString& path, tagTextureItem* entry, IDirect3DDevice9* device);
  tagTextureItem* ReadyPreview(const CString& path, IDirect3DDevice9* device);
  // Advances the tile upload of a decoded entry; the finished entry, or null.
  tagTextureItem* UploadSome(const CString& path, tagTextureItem* entry, IDirect3DDevice9* device, double budgetMs,
                             Upload*& upload);
  ViewPicture Failed(const CString& path);

  ResourceCache& m_cache;
  std::mutex m_mutex;
  std::condition_variable m_wake;
  std::deque<Job> m_jobs;
  std::vector<CString> m_wanted;  // the current picture first, then those decoded ahead
  std::map<CString, Facts> m_facts;
  CSize m_previewSize;
  IDirect3DDevice9* m_device = nullptr;  // only compared against null by ReleaseTexture
  std::function<void()> m_notify;
  bool m_busy = false;
  CString m_working;  // path of the job in progress
  bool m_stop = false;
  std::atomic<bool> m_cancel{false};
  std::map<CString, Upload> m_uploads;  // drawing thread only
  Thread m_thread;                      // last: started on the first request
};

}  // namespace KarvelUI
