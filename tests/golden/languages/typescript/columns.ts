// <@text:anchor#overview>
export interface Column {
  readonly title: string;
  readonly width: number;
}

const defaultWidth: number = 12; /* <@control:slider#width [29,31] {"min":1,"max":40}> */

export function column(title: string, width: number = defaultWidth): Column {
  return { title, width };
}

const columns: ReadonlyArray<Column> = [column('name'), column('size', 8)];
/** <@task#sum> **/
const gaps = 2 * (columns.length - 1);
export const total: number = columns.reduce((sum, c) => sum + c.width, gaps); // <@output#total [13,18] {"format":"short"}>
/** <@task#sum> **/

export default columns;
/* <@appendix> */
/* <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}> */
