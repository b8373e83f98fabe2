using System;
using System.IO;

namespace Zent.Discovery
{
    /// <summary>The functions that an inventory needs of the library that knows devices.</summary>
    internal sealed class InventoryLibrary : NativeLibrary
    {
        public readonly CreateFunction Create;
        public readonly FreeFunction Free;
        public readonly FeedFunction Feed;
        public readonly AdvanceTimeFunction AdvanceTime;
        public readonly NextWishFunction NextWish;
        public readonly WishTextFunction WishText;
        public readonly AnswerWishFunction AnswerWish;
        public readonly GetTextFunction NextEvent;
        public readonly GetTextFunction Snapshot;
        public readonly NextTimeFunction NextTime;
        public readonly StartSearchFunction StartSearch;
        public readonly SearchStateFunction SearchState;
        public readonly StartChangeFunction StartChange;
        public readonly KeptChangesFunction KeptChanges;

        private const int OutOfMemory = 27;
        private const int IO = 58;

        private readonly GetLastErrorFunction getLastError;

        /// <param name="path">The file; null for the environment variable's, or where such files lie.</param>
        public InventoryLibrary(string path)
            : base("DiscoveryInventory", path, Inventory.LibraryVariable)
        {
            int word = IntPtr.Size;
            Bind(out Create, "DiscoveryInventoryCreate", 2 * word);
            Bind(out Free, "DiscoveryInventoryFree", word);
            Bind(out Feed, "DiscoveryInventoryFeed", 2 * word + 12);
            Bind(out AdvanceTime, "DiscoveryInventoryAdvanceTime", word + 8);
            Bind(out NextWish, "DiscoveryInventoryNextWish", 2 * word);
            Bind(out WishText, "DiscoveryInventoryWishText", 3 * word);
            Bind(out AnswerWish, "DiscoveryInventoryAnswerWish", word + 16);
            Bind(out NextEvent, "DiscoveryInventoryNextEvent", 2 * word);
            Bind(out Snapshot, "DiscoveryInventorySnapshot", 2 * word);
            Bind(out NextTime, "DiscoveryInventoryNextTime", 2 * word);
            Bind(out StartSearch, "DiscoveryInventoryStartSearch", 2 * word + 8);
            Bind(out SearchState, "DiscoveryInventorySearchState", 3 * word);
            Bind(out StartChange, "DiscoveryInventoryStartChange", 4 * word + 8);
            Bind(out KeptChanges, "DiscoveryInventoryKeptChanges", 3 * word);
            Bind(out getLastError, "DiscoveryInventoryGetLastError", 0);
        }

        /// <exception cref="ArgumentException">Options or a document are refused.</exception>
        /// <exception cref="IOException">The journal cannot be read.</exception>
        public void Check(int code)
        {
            if (code != 0)
            {
                string text = Text(getLastError());
                throw code == OutOfMemory ? new OutOfMemoryException(text)
                    : code == IO ? new IOException(text)
                    : (Exception)new ArgumentException(text);
            }
        }
    }
}
