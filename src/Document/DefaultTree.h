#pragma once
// The tree of a new document: the nine default folders in kind order, and a few sample notes
// whose captions and texts come from the language module ("WIZARDDLG_SAMPLE_TREE_" keys).
class CDBFolder;
class CItemRecords;

// Creates the records of the default folders and sample notes under `root`, whose record exists,
// and writes every field of them and of the root. False when a record cannot be made or written.
bool BuildDefaultTree(CDBFolder& root, CItemRecords& records);
