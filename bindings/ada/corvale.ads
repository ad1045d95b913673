--  The C API of libCorvale: messages and log, key modes, input-file cards, interface self-tests.
--
--     Corvale.Open;
--     Corvale.Load_File ("orbit.inp");
--     Values : constant Corvale.Real64_Array := Corvale.MOIC_Data (128);
--
--  Texts come back without the blanks that fill their buffers; bytes are Latin-1, as Character is.
--  The library has one state for the whole process. Every subprogram may be called by any number of
--  tasks: one lock puts their calls in a row. Code that reaches the same library by another way is
--  not held back by that.

with Interfaces;

package Corvale is

   subtype Int32 is Interfaces.Integer_32;
   subtype Int64 is Interfaces.Integer_64;
   subtype Real64 is Interfaces.IEEE_Float_64;

   type Int32_3 is array (1 .. 3) of Int32 with Convention => C;
   type Int64_3 is array (1 .. 3) of Int64 with Convention => C;
   type Real64_3 is array (1 .. 3) of Real64 with Convention => C;
   type Int32_6 is array (1 .. 6) of Int32 with Convention => C;
   type Int64_6 is array (1 .. 6) of Int64 with Convention => C;
   type Real64_6 is array (1 .. 6) of Real64 with Convention => C;
   type Real64_Array is array (Positive range <>) of Real64 with Convention => C;

   subtype Text_512 is String (1 .. 512);
   subtype Text_128 is String (1 .. 128);

   Corvale_Error : exception;
   --  The library returned status 2; the message is its own.

   Text_Error : exception;
   --  A text that the library would have cut silently: a character outside 32 to 126, too long, or
   --  a name or message that begins with a blank. It was not called.

   Load_Error : exception;
   --  The library, or one of its functions, is not there: the loader's reason. Or Open was not
   --  called.

   procedure Open (Library : String := "");
   --  Loads a library by its path, or by its name from where the system looks, to the end of the
   --  process. Without one it is what CORVALE_LIBRARY names, or else libCorvale.so.9.

   procedure Init;
   --  CorvaleInit. Does nothing: the library is ready once it is loaded.

   function Info return String;
   --  CorvaleGetInfo. Name, version, build date, platform and compiler.

   function Init_Dll_Names return String;
   --  GetInitDllNames. The libraries that have to be initialised first: none.

   procedure Open_Log_File (Name : String);
   --  OpenLogFile. Opens the log, created or emptied; every message is from then on also its line.

   procedure Close_Log_File;
   --  CloseLogFile. Closes the log, if one is open, and blanks the last error message.

   procedure Log_Message (Message : String);
   --  LogMessage. Stores a message of at most 128 characters and writes it to an open log.

   function Last_Err_Msg return String;
   --  GetLastErrMsg. The last error message; it stays until the next error or Close_Log_File.

   function Last_Info_Msg return String;
   --  GetLastInfoMsg. The last informational message.

   function Dup_Key_Mode return Int32;
   procedure Set_Dup_Key_Mode (Mode : Int32);
   --  GetDupKeyMode, SetDupKeyMode. 0 or 1; setting another raises and changes nothing.

   function All_Key_Mode return Int32;
   procedure Set_All_Key_Mode (Mode : Int32);
   --  GetAllKeyMode, SetAllKeyMode. 0 or 1; setting another raises and changes nothing.

   procedure Reset_All_Key_Mode;
   --  ResetAllKeyMode. Sets the all-key and the duplication key mode back to 0.

   function Elset_Key_Mode return Int32;
   procedure Set_Elset_Key_Mode (Mode : Int32);
   --  GetElsetKeyMode, SetElsetKeyMode. 0 or 1; setting another raises and changes nothing.

   procedure Load_File (Name : String);
   --  CorvaleLoadFile. Reads the cards of a file. Raises if it cannot be opened, never for what it
   --  holds.

   function MOIC_Data (Count : Natural) return Real64_Array;
   --  GetMOICData. The first values of the array that QZ_MOIC cards fill; for more than 128 the
   --  library gives zeros.

   type Values is record
      Ch   : Character;
      I    : Int32;
      L    : Int64;
      D    : Real64;
      Text : Text_512;
      I3   : Int32_3;
      L3   : Int64_3;
      D3   : Real64_3;
      I6   : Int32_6;
      L6   : Int64_6;
      D6   : Real64_6;
   end record;
   --  One of every kind of argument, for the interface tests.

   function Test_Interface (From : Values) return Values;
   --  TestInterface. Every value as it arrived in the library.

   procedure Test_Interface_2 (All_Values : in out Values);
   --  TestInterface2. Changes every value by a fixed amount; integers wrap.

   procedure Test_Interface_3
     (I3 : Int32_3; I3_Out : out Int32_3; I6 : Int32_6; I6_Out : out Int32_6);
   --  TestInterface3. 4 times I3 and 5 times I6; products wrap.

end Corvale;
